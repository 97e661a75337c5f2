// The kernel for every x86-64 CPU.
#include "tav/kernel/body-inl.h"
#include "tav/kernel/entries.h"
#include "tav/kernel/prepare-inl.h"
#include "tav/kernel/simd_baseline.h"

namespace tav::kernel {

void computeBaseline(const PlanView& plan, const BatchView& batch, const WorkView& work) {
  computeBatch<Simd>(plan, batch, work);
}

void prepareBaseline(const IntervalView& interval, const RowsView& rows, const WorkView& work) {
  prepareRows<Simd>(interval, rows, work);
}

}  // namespace tav::kernel
