// The kernel for AVX2 and FMA.
#include "tav/kernel/body-inl.h"
#include "tav/kernel/entries.h"
#include "tav/kernel/prepare-inl.h"
#include "tav/kernel/simd_avx2.h"
#include "tav/kernel/tail-inl.h"

namespace tav::kernel {

void computeAvx2(const PlanView& plan, const BatchView& batch, const WorkView& work) {
  computeBatch<Simd>(plan, batch, work);
}

void prepareAvx2(const IntervalView& interval, const RowsView& rows, const WorkView& work) {
  prepareRows<Simd>(interval, rows, work);
}

TailCounts selectTailAvx2(const float* values, std::size_t count, float scale, float cut, float* tail) {
  return selectTail<Simd>(values, count, scale, cut, tail);
}

}  // namespace tav::kernel
