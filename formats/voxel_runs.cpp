#include "formats/voxel_runs.h"

namespace formats {

VoxelRuns::VoxelRuns(const std::vector<std::uint8_t>& flags, std::size_t voxels) : imageVoxels_(voxels) {
  if (flags.empty()) runs_.push_back({0, 0, voxels});
  const auto end = flags.end();
  for (auto at = flags.begin(); at != end;) {
    const auto first = std::find_if(at, end, [](std::uint8_t flag) { return flag != 0; });
    at = std::find(first, end, std::uint8_t{0});
    if (first == at) break;
    runs_.push_back(
        {static_cast<std::size_t>(first - flags.begin()), count(), static_cast<std::size_t>(at - first)});
  }
}

std::size_t VoxelRuns::voxelOf(std::size_t rank) const {
  const VoxelRun& run = runs_[runAt(rank)];
  return run.first + (rank - run.rank);
}

std::size_t VoxelRuns::runAt(std::size_t rank) const {
  const auto behind =
      std::upper_bound(runs_.begin(), runs_.end(), rank,
                       [](std::size_t value, const VoxelRun& run) { return value < run.rank; });
  return static_cast<std::size_t>(behind - runs_.begin()) - 1;
}

}  // namespace formats
