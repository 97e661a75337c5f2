// The fast voxel path: batches of voxels through a kernel of tav/kernel.
#ifndef TAVMAP_TAV_KERNEL_PATH_H
#define TAVMAP_TAV_KERNEL_PATH_H

#include <deque>

#include "tav/kernel_batches.h"
#include "tav/reference_path.h"
#include "tav/voxel_path.h"

namespace tav {

// Voxels of which the kernel is not sure, close to singular or out of single precision's range,
// are computed again by the reference fits, with the same surrogates: failures are the reference's
// whatever the kernel. Jobs outside the kernels' limits go to the reference path whole.
//
// References with one draw per voxel share its row and its own part of the fits. With several draws
// that part is small, and a reference's surrogates are better kept in the cache: the references
// then take turns over the voxels of a call.
class KernelPath : public VoxelPath {
 public:
  explicit KernelPath(const kernel::Kernel& kernel) : kernel_(kernel) {}

  [[nodiscard]] const char* name() const override { return kernel_.name; }
  void begin(std::span<const VoxelJob> jobs) override;
  [[nodiscard]] std::unique_ptr<VoxelPath> beside(
      std::span<simo::RandomStream* const> streams) const override;
  void compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
               std::span<const VoxelResults> results) override;

  // Voxels that the reference fits had to decide since begin(), counted per reference.
  [[nodiscard]] std::size_t nrReferred() const;

 private:
  const kernel::Kernel& kernel_;
  std::size_t jobsPerBatches_ = 1;
  std::deque<KernelBatches> batches_;  // none: the reference path does it all
  ReferencePath reference_;
};

}  // namespace tav

#endif
