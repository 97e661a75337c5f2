// Maps without a single computed voxel say nothing, and must not look like maps in which nothing survives.
#ifndef TAVMAP_STUDY_NOTHING_COMPUTED_H
#define TAVMAP_STUDY_NOTHING_COMPUTED_H

#include <cstdint>
#include <string>
#include <vector>

#include "study/condition_runs.h"

namespace study {

// Why no voxel of a condition was computed, and what to do: no voxel is included, values that are not
// finite, constant courses, or intervals that are too short for the model. codes: StatusCode per voxel.
// effectiveVolumes: of the condition. Reads the courses of about 50 voxels. Throws formats::FileError.
[[nodiscard]] std::string whyNothingIsComputed(std::vector<ConditionRun>& runs,
                                               const std::vector<std::uint8_t>& codes, int effectiveVolumes,
                                               int order);

}  // namespace study

#endif
