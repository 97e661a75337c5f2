// A study like a planned one with few voxels of noise.
#ifndef TAVMAP_PLANNING_MINIATURE_H
#define TAVMAP_PLANNING_MINIATURE_H

#include <cstddef>
#include <filesystem>

#include "study/study_plan.h"

namespace planning {

// The request of the plan with other images, which are written into `folder`: a box of about so many voxels,
// of which `share` lie in the mask, and so many references of a few voxels each. Events, confounds, volumes,
// conditions and settings stay. Throws formats::FileError.
[[nodiscard]] study::Request miniatureOf(const study::StudyPlan& plan, std::size_t voxels, double share,
                                         std::size_t references, const std::filesystem::path& folder);

}  // namespace planning

#endif
