// Which kernels there are, which of them this CPU runs, and which one ran.
#ifndef TAVMAP_TAV_KERNEL_DISPATCH_H
#define TAVMAP_TAV_KERNEL_DISPATCH_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "tav/kernel/plan_view.h"
#include "tav/kernel/tail_counts.h"

namespace tav::kernel {

struct Kernel {
  const char* name;  // as TAVMAP_KERNEL spells it
  int width;         // voxels at once
  bool (*isSupported)();
  void (*compute)(const PlanView&, const BatchView&, const WorkView&);
  void (*prepare)(const IntervalView&, const RowsView&, const WorkView&);
  // Writes the magnitudes among `count` values times `scale` that are at least `cut`, above 0, to
  // `tail`, which has room for all; the same for every kernel.
  TailCounts (*selectTail)(const float* values, std::size_t count, float scale, float cut, float* tail);
};

// All kernels of this build, the fastest first. The last runs everywhere.
[[nodiscard]] std::span<const Kernel> allKernels();
// Null when there is none of that name.
[[nodiscard]] const Kernel* findKernel(std::string_view name);
// The first that this CPU runs.
[[nodiscard]] const Kernel& bestKernel();

// Runs `kernel` and counts the batch. The kernel must be supported.
void run(const Kernel& kernel, const PlanView& plan, const BatchView& batch, const WorkView& work);
// Batches that the kernel of that name has run in this process; 0 for unknown names.
[[nodiscard]] std::uint64_t batchesRun(std::string_view name);

}  // namespace tav::kernel

#endif
