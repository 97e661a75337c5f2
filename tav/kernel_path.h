// The fast voxel path: batches of voxels through a kernel of tav/kernel.
#ifndef TAVMAP_TAV_KERNEL_PATH_H
#define TAVMAP_TAV_KERNEL_PATH_H

#include <cstdint>
#include <memory>
#include <vector>

#include "tav/kernel/dispatch.h"
#include "tav/kernel/plan.h"
#include "tav/reference_path.h"
#include "tav/voxel_path.h"

namespace tav {

class ResultWriter;

// Voxels of which the kernel is not sure, close to singular or out of single precision's range,
// are computed again by the reference path, with the same surrogates: failures are the reference's
// whatever the kernel. Jobs outside the kernels' limits go to the reference path whole.
class KernelPath : public VoxelPath {
 public:
  explicit KernelPath(const kernel::Kernel& kernel) : kernel_(kernel) {}

  [[nodiscard]] const char* name() const override { return kernel_.name; }
  void begin(const VoxelJob& job) override;
  void compute(std::size_t nrOfVoxels, std::span<const VoxelData> data, const VoxelResults& results,
               VoxelCounts& counts) override;

  // Voxels that the reference path had to decide since begin().
  [[nodiscard]] std::size_t nrReferred() const { return nrReferred_; }

 private:
  [[nodiscard]] ReferencePath& reference();
  void startBatch();
  void addVoxel(std::size_t voxel, std::span<const VoxelData> data);
  void finishBatch(std::span<const VoxelData> data, ResultWriter& writer);
  void storeVoxel(std::size_t i, std::span<const VoxelData> data, ResultWriter& writer);
  [[nodiscard]] const void* courseOf(std::size_t voxel, std::size_t set, std::span<const VoxelData> data);
  [[nodiscard]] bool mayReadBehind(std::size_t voxel, int nrOfVolumes, std::size_t valueBytes) const;

  const kernel::Kernel& kernel_;
  VoxelJob job_;
  ReferencePath reference_;
  bool isReferenceReady_ = false;
  std::unique_ptr<kernel::Plan> plan_;  // null: the reference path does it all
  std::unique_ptr<kernel::Workspace> work_;
  std::size_t drawsPerVoxel_ = 0;  // of all intervals
  std::size_t nrReferred_ = 0;

  // The batch: which voxels, their courses and surrogates, and the kernel's answers.
  std::size_t nrInCall_ = 0;
  std::vector<std::size_t> voxels_;
  std::vector<const void*> courses_;
  std::vector<std::uint32_t> drawn_;
  std::vector<std::unique_ptr<unsigned char[]>> copies_;  // of courses at the end of the data
  std::vector<float> measures_[kNrOfMeasures], nulls_[kNrOfMeasures];
  std::vector<kernel::Verdict> verdicts_, nullVerdicts_;
};

}  // namespace tav

#endif
