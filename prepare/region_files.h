// The reference regions of a request, read from its files.
#ifndef TAVMAP_PREPARE_REGION_FILES_H
#define TAVMAP_PREPARE_REGION_FILES_H

#include <string>
#include <vector>

#include "prepare/regions.h"
#include "prepare/run_plan.h"
#include "request/request.h"

namespace study {

// The grid of the runs and the voxels that lie in every mask.
[[nodiscard]] RegionSpace regionSpace(const std::vector<RunPlan>& runs, Method method);

// Regions in the order of the request. Throws InputError for unknown labels, empty regions and
// two regions of one name. request.title begins messages, with the line of the entry.
[[nodiscard]] std::vector<Region> readRegions(const Request& request, const RegionSpace& space);

}  // namespace study

#endif
