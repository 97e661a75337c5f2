// The reference regions of a request, read from its files.
#ifndef TAVMAP_STUDY_REGION_FILES_H
#define TAVMAP_STUDY_REGION_FILES_H

#include <string>
#include <vector>

#include "study/regions.h"
#include "study/request.h"
#include "study/run_plan.h"

namespace study {

// The grid of the runs and the voxels that lie in every mask.
RegionSpace regionSpace(const std::vector<RunPlan>& runs, Method method);

// Regions in the order of the request. Throws InputError for unknown labels, empty regions and
// two regions of one name. request.title begins messages, with the line of the entry.
std::vector<Region> readRegions(const Request& request, const RegionSpace& space);

}  // namespace study

#endif
