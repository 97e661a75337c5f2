// References that share a kernel's plan: batches of voxels through the kernel, and what it is not
// sure of through the reference fits.
#ifndef TAVMAP_TAV_KERNEL_BATCHES_H
#define TAVMAP_TAV_KERNEL_BATCHES_H

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "simo/remainder.h"
#include "tav/kernel/dispatch.h"
#include "tav/kernel/plan.h"
#include "tav/voxel_fits.h"
#include "tav/voxel_path.h"
#include "tav/voxel_writer.h"

namespace tav {

class KernelBatches {
 public:
  // One job per reference, at most kernel::kMaxReferences, within the kernels' limits.
  KernelBatches(std::span<const VoxelJob> jobs, const kernel::Kernel& kernel);
  // The same for another thread, on the same plan; its first streams are for these references.
  KernelBatches(const KernelBatches& other, std::span<simo::RandomStream* const> streams);

  // As VoxelPath::compute().
  void compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
               std::span<const VoxelResults> results);

  // Voxels that the reference fits had to decide, counted per reference.
  [[nodiscard]] std::size_t nrReferred() const { return nrReferred_; }

 private:
  // One reference's side of the batch: its draws and the kernel's answers.
  struct Reference {
    Reference(const VoxelJob& job, std::size_t drawsPerVoxel);
    // Surrogates for the next included voxels, at most a batch.
    void draw(std::size_t nrOfVoxels);
    // Those of the batch's voxel i, in the order in which they were drawn.
    [[nodiscard]] std::vector<std::uint32_t> drawnFor(std::size_t i) const;
    [[nodiscard]] kernel::ReferenceBatch view();
    [[nodiscard]] VoxelFits& fits();

    VoxelJob job;
    std::size_t draws, drawsPerVoxel;  // of one interval, of all
    simo::Remainder rowOf;
    std::vector<std::uint32_t> drawn;  // [interval, in least squares only one][draw][voxel of a batch]
    std::vector<float> measures[kNrOfMeasures], nulls[kNrOfMeasures];
    std::vector<kernel::Verdict> verdicts, nullVerdicts;
    std::vector<std::uint8_t> doubts;    // 0: the voxel's verdicts are all kDone
    std::unique_ptr<VoxelFits> ownFits;  // made when first needed: for most jobs never
  };

  // Where the courses of one set stand.
  struct CourseOfSet {
    std::size_t file;   // index into the data of a call
    std::size_t bytes;  // of one voxel's course
  };

  // Voxels first ... end - 1 of the nrInCall ones whose data follow each other; there is room for them.
  void addVoxels(std::size_t first, std::size_t end, std::size_t nrInCall, std::span<const VoxelData> data);
  [[nodiscard]] const void* copyOf(const unsigned char* course, std::size_t bytes);
  void finishBatch(std::span<const VoxelData> data, std::deque<VoxelWriter>& writers);
  void store(Reference& reference, std::span<const VoxelData> data, VoxelWriter& writer);
  void storeDoubtful(Reference& reference, std::size_t i, std::span<const VoxelData> data,
                     VoxelWriter& writer);

  const kernel::Kernel& kernel_;
  std::shared_ptr<const kernel::Plan> plan_;
  kernel::Workspace work_;
  std::vector<CourseOfSet> coursesOfSets_;
  std::deque<Reference> references_;
  std::size_t nrReferred_ = 0;

  // The batch: which voxels, and their courses.
  std::vector<std::size_t> voxels_;
  std::vector<const void*> courses_;
  std::vector<std::unique_ptr<unsigned char[]>> copies_;  // of courses at the end of the data
};

}  // namespace tav

#endif
