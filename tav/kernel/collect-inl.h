// From the courses of a group's voxels to lag sums, one lane per voxel. Included once per CPU file,
// behind its Simd.
//
//     course of voxel 0 --detrend--> row --lag sums--> partials[statistic][0][W]
//     ...                                                                           sum over the
//     course of voxel W-1 ---------> row ------------> partials[statistic][W-1][W]  last W
//                                                                     |
//                                            lanes[statistic][W] <----+
//
// With one reference its cross sums, those of the first surrogate and the voxel's own sums come
// from one pass over each row. With several references the rows are kept: own sums first, then a
// pass for every few references and surrogates.
#ifndef TAVMAP_TAV_KERNEL_COLLECT_INL_H
#define TAVMAP_TAV_KERNEL_COLLECT_INL_H

#include "tav/kernel/detrend-inl.h"
#include "tav/kernel/group-inl.h"

namespace tav::kernel {
namespace {

// What the trends of a group's voxels leave to judge about their rows.
template <class S>
struct TrendNotes {
  typename S::Floats noise;  // sums of squares that rounding of the trends explains
  typename S::Mask sloped;   // lanes with a slope in any interval
};

template <class S>
class Collector {
 public:
  explicit Collector(const Group<S>& group)
      : group_(group), plan_(group.plan), work_(group.work), layout_(group.layout) {}

  // Rows and own sums; with one reference also the cross sums of kTruth and draw 0, in rows 0 and 1.
  TrendNotes<S> collectVoxels() {
    notes_ = {S::zero(), 0};
    for (int n = 0; n < plan_.nrOfIntervals; ++n) fitTrends(n);
    if (plan_.nrOfReferences == 1) {
      collectAtOnce();
    } else {
      collectOwn();
    }
    return notes_;
  }

  // Cross sums of the draws first ... first + count - 1, at most kMaxRows, in rows 0 ... count - 1.
  void collectCross(int reference, int first, int count) {
    const int statistics = count * (2 * plan_.order + 1);
    for (int l = 0; l < kWidth; ++l) sumCrossPass(reference, l, first, count);
    sumPartials(0, statistics, layout_.cross);
  }

  // Own sums and tails of a draw into the series at `variable`.
  void collectSeries(int reference, int draw, int variable) {
    for (int l = 0; l < kWidth; ++l) {
      for (int n = 0; n < plan_.nrOfIntervals; ++n)
        addTable(group_.tableOf(reference, n, group_.drawnRow(reference, l, n, draw)), n, variable, l);
    }
  }

 private:
  static constexpr int kWidth = S::kWidth;

  // Mean and slope of one interval for all voxels of the group.
  void fitTrends(int n) {
    const IntervalView& interval = plan_.intervals[n];
    float* values = work_.partials;
    float* products = values + kWidth * kWidth;
    for (int l = 0; l < kWidth; ++l) {
      group_.withCourse(l, interval, [&](const auto* y) {
        group_.lane(layout_.first + n)[l] = static_cast<float>(y[0]);
        const TrendSums<S> sums = trendSums<S>(interval, y);
        S::store(values + l * kWidth, sums.values);
        S::store(products + l * kWidth, sums.products);
      });
    }
    const auto first = S::load(group_.lane(layout_.first + n));
    const Trends<S> trends = trendsFrom<S>(interval, first, S::sumRows(values), S::sumRows(products));
    S::store(group_.lane(layout_.mean + n), trends.mean);
    S::store(group_.lane(layout_.slope + n), trends.slope);
    notes_.noise = notes_.noise + trends.noise;
    notes_.sloped |= S::less(S::zero(), S::magnitude(trends.slope));
  }

  // Writes lane l's row of one interval, and its tails.
  float* writeRow(int l, int n) {
    const IntervalView& interval = plan_.intervals[n];
    float* row = group_.rowOf(l, interval);
    const float mean = group_.lane(layout_.mean + n)[l], slope = group_.lane(layout_.slope + n)[l];
    group_.withCourse(l, interval, [&](const auto* y) { writeResiduals<S>(interval, mean, slope, y, row); });
    float* tails = group_.lane(layout_.own + plan_.order + 1 + n * plan_.order) + l;
    for (int i = 0; i < plan_.order; ++i) tails[i * kWidth] = row[interval.length - 1 - i];
    return row;
  }

  void writeRows(int l) {
    for (int n = 0; n < plan_.nrOfIntervals; ++n) writeRow(l, n);
  }

  void collectAtOnce() {
    const int statistics = nrOfStatistics(plan_.order), own = ownStatistic(plan_.order, 0);
    writeRows(0);
    for (int l = 0; l < kWidth; ++l) {
      for (int n = 0; n < plan_.nrOfIntervals; ++n) prefetchNext(0, l, n, 0);
      if (l + 1 < kWidth) writeRows(l + 1);
      for (int n = 0; n < plan_.nrOfIntervals; ++n) {
        work_.segments[n] = {group_.rowOf(l, plan_.intervals[n]),
                             {courseOf(0, l, n, kTruth), courseOf(0, l, n, 0)},
                             plan_.intervals[n].paddedLength};
      }
      sumAllLags<S>({work_.segments, plan_.nrOfIntervals}, plan_.order, partialsOf(l));
    }
    sumPartials(0, own, layout_.cross);
    sumPartials(own, statistics, layout_.own);
  }

  // A row against itself, at lags 0 ... order.
  void collectOwn() {
    const int lag0 = crossStatistic(plan_.order, 0, 0);
    for (int l = 0; l < kWidth; ++l) {
      for (int n = 0; n < plan_.nrOfIntervals; ++n) {
        const float* row = writeRow(l, n);
        work_.segments[n] = {row, {row}, plan_.intervals[n].paddedLength};
      }
      sumOwnLags<S>({work_.segments, plan_.nrOfIntervals}, plan_.order, partialsOf(l));
    }
    sumPartials(lag0, lag0 + plan_.order + 1, layout_.own);
  }

  void sumCrossPass(int reference, int l, int first, int count) {
    for (int n = 0; n < plan_.nrOfIntervals; ++n) {
      LagRows& rows = work_.segments[n];
      rows.voxel = group_.rowOf(l, plan_.intervals[n]);
      rows.paddedLength = plan_.intervals[n].paddedLength;
      for (int row = 0; row < count; ++row) {
        rows.references[row] = courseOf(reference, l, n, first + row);
        if (plan_.draws == 1 && first + row != kTruth) prefetchNext(reference, l, n, first + row);
      }
    }
    sumCrossLags<S>({work_.segments, plan_.nrOfIntervals}, count, plan_.order, partialsOf(l));
  }

  const float* courseOf(int reference, int l, int interval, int draw) const {
    return group_.courseOf(reference, interval, group_.drawnRow(reference, l, interval, draw));
  }

  // Rows are drawn at random, so the processor cannot guess the next lane's. With several draws they
  // come up so often that they stay in its cache.
  void prefetchNext(int reference, int l, int interval, int draw) const {
    if (l + 1 == kWidth) return;
    const float* row = courseOf(reference, l + 1, interval, draw);
    for (int t = 0; t < plan_.intervals[interval].paddedLength; t += 16) __builtin_prefetch(row + t);
  }

  // Own sums are added up over intervals, tails stand beside each other.
  void addTable(const float* table, int interval, int variable, int l) const {
    const int p = plan_.order;
    float* own = group_.lane(variable) + l;
    if (interval == 0) {
      for (int i = 0; i <= p; ++i) own[i * kWidth] = table[i];
    } else {
      for (int i = 0; i <= p; ++i) own[i * kWidth] += table[i];
    }
    float* tails = group_.lane(variable + p + 1 + interval * p) + l;
    for (int i = 0; i < p; ++i) tails[i * kWidth] = table[p + 1 + i];
  }

  [[nodiscard]] float* partialsOf(int l) const {
    return work_.partials + static_cast<std::ptrdiff_t>(l) * kWidth;
  }
  [[nodiscard]] float* partialsOfStatistic(int s) const {
    return work_.partials + static_cast<std::ptrdiff_t>(s) * kWidth * kWidth;
  }

  void sumPartials(int first, int end, int variable) const {
    for (int s = first; s < end; ++s)
      S::store(group_.lane(variable + s - first), S::sumRows(partialsOfStatistic(s)));
  }

  const Group<S>& group_;
  const PlanView& plan_;
  const WorkView& work_;
  const LaneLayout& layout_;
  TrendNotes<S> notes_{};
};

}  // namespace
}  // namespace tav::kernel

#endif
