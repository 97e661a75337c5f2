// How fast this machine does the very work of a plan, measured on a miniature of it: the same runs, volumes,
// conditions, confounds and settings over few voxels of noise, through the same import and engine.
#ifndef TAVMAP_PLANNING_CALIBRATION_H
#define TAVMAP_PLANNING_CALIBRATION_H

#include <cstddef>

#include "planning/work_rates.h"
#include "study/study_plan.h"

namespace planning {

inline constexpr std::size_t kTogether = 10;  // references that share a pass

// Takes a second or two, and some megabytes below `folder` while it lasts. Throws what planning, importing
// and computing throw.
[[nodiscard]] Rates measureRates(const study::StudyPlan& plan, const std::filesystem::path& folder);

// Volumes of all conditions together.
[[nodiscard]] double conditionVolumes(const study::StudyPlan& plan);
// Voxels of the runs' grid, and the share of them that is computed. Reads the mask or the first volume.
[[nodiscard]] std::size_t gridVoxels(const study::StudyPlan& plan);
[[nodiscard]] double usedShare(const study::StudyPlan& plan);

}  // namespace planning

#endif
