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
  typename S::Floats noise;   // sums of squares that rounding of the trends explains
  typename S::Floats digits;  // sums of squares below which the means have cost digits
  typename S::Mask sloped;    // lanes with a slope in any interval
};

template <class S, class View>
class Collector {
  static constexpr int kOrder = View::kKnownOrder;

 public:
  explicit Collector(const Group<S, View>& group)
      : group_(group),
        plan_(group.plan),
        work_(group.work),
        layout_(group.layout),
        all_(loopsForAll<S, kOrder>(plan_.order)),
        own_(loopsForOwn<S, kOrder>(plan_.order)),
        cross_{loopsForCross<S, kOrder, 1>(plan_.order), loopsForCross<S, kOrder, 2>(plan_.order),
               loopsForCross<S, kOrder, 3>(plan_.order), loopsForCross<S, kOrder, 4>(plan_.order)} {}

  // Rows and own sums; with one reference also the cross sums of kTruth and draw 0, in rows 0 and 1.
  TrendNotes<S> collectVoxels() {
    notes_ = {S::zero(), S::zero(), 0};
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
    for (int n = 0; n < plan_.nrOfIntervals; ++n) placeRows(reference, n, first, count);
    for (int l = 0; l < kWidth; ++l) {
      if (plan_.draws == 1) prefetchRows(l + 1, count);
      cross_[count - 1].run(placesOf(l), plan_.order, partialsOf(l));
    }
    sumPartials(0, count * (2 * plan_.order + 1), layout_.cross);
  }

  // Own sums and edges of a draw into the series at `variable`.
  void collectSeries(int reference, int draw, int variable) {
    for (int n = 0; n < plan_.nrOfIntervals; ++n) {
      const float* const tables = group_.rowsOf(reference, n).tables;
      const auto stride = static_cast<std::ptrdiff_t>(plan_.intervals[n].tableStride);
      const std::uint32_t* const drawn = draw == kTruth ? nullptr : group_.drawnRows(reference, n, draw);
      const float* ofLanes[extent(kWidth)];
      for (int l = 0; l < kWidth; ++l)
        ofLanes[l] = tables + (drawn == nullptr ? -stride : static_cast<std::ptrdiff_t>(drawn[l]) * stride);
      addTables(ofLanes, n, variable);
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
    if (View::leastSquares) notes_.digits = notes_.digits + digitsLostBelow<S>(interval, trends.mean);
    notes_.sloped |= S::less(S::zero(), S::magnitude(trends.slope));
  }

  // Writes lane l's row of one interval, and its edges.
  float* writeRow(int l, int n) {
    const IntervalView& interval = plan_.intervals[n];
    float* row = group_.rowOf(l, interval);
    const float mean = group_.lane(layout_.mean + n)[l], slope = group_.lane(layout_.slope + n)[l];
    group_.withCourse(l, interval, [&](const auto* y) { writeResiduals<S>(interval, mean, slope, y, row); });
    const int p = plan_.order;
    float* edges = group_.lane(layout_.own + p + 1 + n * group_.edges) + l;
    for (int i = 0; i < p; ++i) edges[i * kWidth] = row[interval.length - 1 - i];
    if (plan_.leastSquares) {
      for (int i = 0; i < p; ++i) edges[(p + i) * kWidth] = row[i];
    }
    return row;
  }

  void writeRows(int l) {
    for (int n = 0; n < plan_.nrOfIntervals; ++n) writeRow(l, n);
  }

  // The next lane's row is written before a lane's is summed: what was stored just now cannot be
  // loaded at another alignment yet.
  void collectAtOnce() {
    for (int n = 0; n < plan_.nrOfIntervals; ++n) placeRows(0, n, kTruth, 2);
    writeRows(0);
    for (int l = 0; l < kWidth; ++l) {
      prefetchRows(l + 1, 2);
      if (l + 1 < kWidth) writeRows(l + 1);
      all_.run(placesOf(l), plan_.order, partialsOf(l));
    }
    const int statistics = nrOfStatistics(plan_.order), own = ownStatistic(plan_.order, 0);
    sumPartials(0, own, layout_.cross);
    sumPartials(own, statistics, layout_.own);
  }

  // A row against itself, at lags 0 ... order.
  void collectOwn() {
    for (int l = 0; l < kWidth; ++l) {
      for (int n = 0; n < plan_.nrOfIntervals; ++n) {
        const float* row = writeRow(l, n);
        placeOf(l, n) = {row, {row}, plan_.intervals[n].paddedLength};
      }
      own_.run(placesOf(l), plan_.order, partialsOf(l));
    }
    const int lag0 = crossStatistic(plan_.order, 0, 0);
    sumPartials(lag0, lag0 + plan_.order + 1, layout_.own);
  }

  [[nodiscard]] LagRows& placeOf(int l, int interval) const {
    return work_.segments[l * plan_.nrOfIntervals + interval];
  }
  [[nodiscard]] LagRowsList placesOf(int l) const { return {&placeOf(l, 0), plan_.nrOfIntervals}; }

  // Where one interval's rows of all lanes are: the voxels' and those of `count` draws.
  void placeRows(int reference, int n, int first, int count) {
    const IntervalView& interval = plan_.intervals[n];
    const ReferenceRows& rows = group_.rowsOf(reference, n);
    for (int l = 0; l < kWidth; ++l) {
      placeOf(l, n).voxel = group_.rowOf(l, interval);
      placeOf(l, n).paddedLength = interval.paddedLength;
    }
    for (int row = 0; row < count; ++row) {
      if (first + row == kTruth) {
        for (int l = 0; l < kWidth; ++l) placeOf(l, n).references[row] = rows.reference;
        continue;
      }
      const std::uint32_t* const drawn = group_.drawnRows(reference, n, first + row);
      for (int l = 0; l < kWidth; ++l)
        placeOf(l, n).references[row] = rows.surrogates + static_cast<std::size_t>(drawn[l]) *
                                                              static_cast<std::size_t>(interval.paddedLength);
    }
  }

  // Rows are drawn at random, so the processor cannot guess the next lane's. With several draws they
  // come up so often that they stay in its cache.
  void prefetchRows(int l, int count) const {
    if (l == kWidth) return;
    for (int n = 0; n < plan_.nrOfIntervals; ++n) {
      const LagRows& rows = placeOf(l, n);
      const float* const last = rows.references[count - 1];
      for (int t = 0; t < rows.paddedLength; t += 16) __builtin_prefetch(last + t);
    }
  }

  // One table per lane: own sums are added up over intervals, edges stand beside each other.
  void addTables(const float* const* tables, int interval, int variable) const {
    static_assert(kTableAlign == 4, "tables are read in quads");
    const int p = plan_.order, size = p + 1 + group_.edges;
    for (int first = 0; first < size; first += kTableAlign) {
      typename S::Floats values[extent(kTableAlign)];
      S::loadQuads(tables, first, values);
      for (int i = first; i < first + kTableAlign && i < size; ++i) {
        float* const lanes = group_.lane(variable + (i <= p ? i : i + interval * group_.edges));
        const bool isSum = i <= p && interval > 0;
        S::store(lanes, isSum ? S::load(lanes) + values[i - first] : values[i - first]);
      }
    }
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

  const Group<S, View>& group_;
  const View& plan_;
  const WorkView& work_;
  const LaneLayout& layout_;
  LagLoops<S, kOrder> all_, own_, cross_[extent(kMaxRows)];
  TrendNotes<S> notes_{};
};

}  // namespace
}  // namespace tav::kernel

#endif
