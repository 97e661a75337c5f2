// Which of the voxels whose difference map passes keep their direction when time runs backwards.
#ifndef TAVMAP_STUDY_DIRECTION_CHECK_H
#define TAVMAP_STUDY_DIRECTION_CHECK_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "results/direction_result.h"
#include "results/results.h"
#include "study/condition_runs.h"
#include "tav/run_observer.h"

namespace study {

// The voxels to test: those outside the reference that pass DTAV at the largest q, ascending. Nothing when
// there is no such map. codes: StatusCode per voxel.
struct TestedVoxels {
  double q = 0;
  std::vector<std::size_t> voxels;
};
[[nodiscard]] std::optional<TestedVoxels> voxelsToTest(const std::vector<tav::MapOutcome>& maps,
                                                       const std::vector<double>& qValues,
                                                       const std::vector<std::uint8_t>& codes);

// DirectionCode of each of these voxels (direction/control.h). Every voxel has random numbers of its own,
// from the seed and its index, so that nothing depends on what else is tested. progress receives 0 to 1.
// Throws formats::FileError. Reads one voxel at a time; about half a millisecond each for 300 volumes.
[[nodiscard]] std::vector<DirectionCode> testDirections(std::vector<ConditionRun>& runs, int order,
                                                        std::uint32_t seed,
                                                        const std::vector<std::size_t>& voxels,
                                                        const std::function<void(double)>& progress);

}  // namespace study

#endif
