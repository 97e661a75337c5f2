// The voxels of a mask as runs of neighbours: rows of a brain are long.
#ifndef TAVMAP_FORMATS_VOXEL_RUNS_H
#define TAVMAP_FORMATS_VOXEL_RUNS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace formats {

struct VoxelRun {
  std::size_t first;  // voxel of the image
  std::size_t rank;   // voxels of the mask before it
  std::size_t count;
};

class VoxelRuns {
 public:
  // One flag per voxel; no flags at all: every one of the `voxels` voxels.
  VoxelRuns(const std::vector<std::uint8_t>& flags, std::size_t voxels);

  [[nodiscard]] const std::vector<VoxelRun>& runs() const { return runs_; }
  [[nodiscard]] std::size_t imageVoxels() const { return imageVoxels_; }
  // Voxels of the mask.
  [[nodiscard]] std::size_t count() const {
    return runs_.empty() ? 0 : runs_.back().rank + runs_.back().count;
  }
  [[nodiscard]] bool isWholeImage() const { return count() == imageVoxels_; }

  // The voxel of the image that has `rank` voxels of the mask before it. Precondition: rank < count().
  [[nodiscard]] std::size_t voxelOf(std::size_t rank) const;

  // Calls `action` with the runs of the voxels of ranks [rank, rank + count), cut to these.
  template <typename Action>
  void forEach(std::size_t rank, std::size_t count, Action&& action) const {
    for (std::size_t i = count > 0 ? runAt(rank) : runs_.size();
         i < runs_.size() && runs_[i].rank < rank + count; ++i) {
      const VoxelRun& run = runs_[i];
      const std::size_t from = std::max(run.rank, rank), to = std::min(run.rank + run.count, rank + count);
      action(VoxelRun{run.first + (from - run.rank), from, to - from});
    }
  }

 private:
  [[nodiscard]] std::size_t runAt(std::size_t rank) const;

  std::size_t imageVoxels_;
  std::vector<VoxelRun> runs_;
};

}  // namespace formats

#endif
