// The entry functions of the kernels, one set per CPU file. Call them through dispatch.h, which
// knows what this CPU can run.
#ifndef TAVMAP_TAV_KERNEL_ENTRIES_H
#define TAVMAP_TAV_KERNEL_ENTRIES_H

#include "tav/kernel/plan_view.h"
#include "tav/kernel/tail_counts.h"

namespace tav::kernel {

void computeScalar(const PlanView& plan, const BatchView& batch, const WorkView& work);
void computeBaseline(const PlanView& plan, const BatchView& batch, const WorkView& work);
void computeAvx2(const PlanView& plan, const BatchView& batch, const WorkView& work);
void computeAvx512(const PlanView& plan, const BatchView& batch, const WorkView& work);

void prepareScalar(const IntervalView& interval, const RowsView& rows, const WorkView& work);
void prepareBaseline(const IntervalView& interval, const RowsView& rows, const WorkView& work);
void prepareAvx2(const IntervalView& interval, const RowsView& rows, const WorkView& work);
void prepareAvx512(const IntervalView& interval, const RowsView& rows, const WorkView& work);

TailCounts selectTailScalar(const float* values, std::size_t count, float scale, float cut, float* tail);
TailCounts selectTailBaseline(const float* values, std::size_t count, float scale, float cut, float* tail);
TailCounts selectTailAvx2(const float* values, std::size_t count, float scale, float cut, float* tail);
TailCounts selectTailAvx512(const float* values, std::size_t count, float scale, float cut, float* tail);

}  // namespace tav::kernel

#endif
