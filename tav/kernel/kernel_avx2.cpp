// The kernel for AVX2 and FMA.
#include "tav/kernel/body-inl.h"
#include "tav/kernel/entries.h"
#include "tav/kernel/prepare-inl.h"
#include "tav/kernel/simd_avx2.h"

namespace tav::kernel {

void computeAvx2(const PlanView& plan, const BatchView& batch, const WorkView& work) {
  computeBatch<Simd>(plan, batch, work);
}

void prepareAvx2(const IntervalView& interval, const RowsView& rows, const WorkView& work) {
  prepareRows<Simd>(interval, rows, work);
}

}  // namespace tav::kernel
