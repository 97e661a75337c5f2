// The kernel: measures of a batch of voxels, W = kWidth of them at a time. Included once per CPU
// file, behind its Simd. Everything here has internal linkage, so that no function compiled for
// one CPU can be linked into code for another.
//
// For one group of W voxels
//
//     course of voxel 0 --detrend--> row --lag sums--> partials[statistic][0][W]
//     ...                                                                           sum over the
//     course of voxel W-1 ---------> row ------------> partials[statistic][W-1][W]  last W
//                                                                     |
//     measures <--- fits, one lane per voxel <--- lanes[statistic][W] <
//
// Lanes of a last, incomplete group repeat its first voxel. A lane never sees its neighbours, so
// the size of groups and batches does not change a result.
#ifndef TAVMAP_TAV_KERNEL_BODY_INL_H
#define TAVMAP_TAV_KERNEL_BODY_INL_H

#include "tav/kernel/detrend-inl.h"
#include "tav/kernel/fit-inl.h"
#include "tav/kernel/lag_sums-inl.h"
#include "tav/kernel/measures-inl.h"

namespace tav::kernel {
namespace {

// Moments outside this range, or pairs of them whose product is outside kProductRange, leave the
// range of single precision somewhere on the reference's way; it decides about them.
inline constexpr float kSmallMoment = 1e-20F, kLargeMoment = 1e20F;
inline constexpr float kSmallProduct = 1e-24F, kLargeProduct = 1e30F;
// Noise of a mean that is far above the values whose squares vanish in single precision.
inline constexpr float kVisibleNoise = 1e-36F;

template <class S>
class GroupKernel {
 public:
  GroupKernel(const PlanView& plan, const BatchView& batch, const WorkView& work)
      : plan_(plan), batch_(batch), work_(work), layout_(plan.order, plan.nrOfIntervals) {
    linkFactor();
    broadcastReference();
  }

  // Voxels first ... first + W - 1, as far as the batch has them.
  void compute(std::size_t first) {
    first_ = first;
    const std::size_t left = batch_.nrOfVoxels - first;
    nrOfVoxels_ = left < kWidth ? static_cast<int>(left) : kWidth;
    collectFirstPass();
    own_ = Doubts<S>{};
    checkOwn();
    yError_ = fitAlone<S>(plan_, y(), factor_, lane(layout_.yLast), own_);
    computeTruth();
    computeNull(0, crossAt(1));
    for (int draw = 1; draw < plan_.draws; draw += kMaxRows)
      computeDraws(draw, lesser(kMaxRows, plan_.draws - draw));
  }

 private:
  using Floats = typename S::Floats;
  using Mask = typename S::Mask;
  static constexpr int kWidth = S::kWidth;

  float* lane(int variable) const { return work_.lanes + static_cast<std::ptrdiff_t>(variable) * kWidth; }
  Series seriesAt(int variable) const { return {lane(variable), lane(variable + plan_.order + 1)}; }
  Series y() const { return seriesAt(layout_.own); }
  // Shift 0 of a row of the cross sums.
  const float* crossAt(int row) const { return lane(layout_.cross + crossStatistic(plan_.order, row, 0)); }
  std::size_t voxelOf(int l) const { return first_ + static_cast<std::size_t>(l < nrOfVoxels_ ? l : 0); }
  const float* tableOf(const IntervalView& interval, std::ptrdiff_t row) const {
    return interval.tables + row * static_cast<std::ptrdiff_t>(interval.tableStride);
  }
  std::uint32_t surrogateOf(int l, int interval, int draw) const {
    const std::size_t cell =
        voxelOf(l) * static_cast<std::size_t>(plan_.nrOfIntervals) + static_cast<std::size_t>(interval);
    return batch_.surrogates[cell * static_cast<std::size_t>(plan_.draws) + static_cast<std::size_t>(draw)];
  }
  // Every lane keeps its rows only when further draws need them.
  float* rowOf(int l, const IntervalView& interval) const {
    const std::size_t slot = plan_.draws > 1 ? static_cast<std::size_t>(l) : 0;
    return work_.rows + slot * plan_.rowSize + interval.rowOffset;
  }

  void linkFactor() {
    const int p = plan_.order;
    for (int i = 0; i < p; ++i) {
      factor_.rows[i] = lane(layout_.yRows + i * (i + 1) / 2);
      factor_.rows[p + i] = lane(layout_.xRows + i * p + i * (i + 1) / 2);
    }
    factor_.inverse = lane(layout_.inverse);
    factor_.probe = lane(layout_.probe);
  }

  // A factor of x's lags alone, in the place of the joint one.
  Factor factorOfX() const {
    Factor factor{};
    for (int i = 0; i < plan_.order; ++i) factor.rows[i] = factor_.rows[plan_.order + i];
    factor.inverse = lane(layout_.inverse + plan_.order);
    factor.probe = lane(layout_.probe + plan_.order);
    return factor;
  }

  void broadcastReference() {
    clearSeries(layout_.truth);
    for (int n = 0; n < plan_.nrOfIntervals; ++n) {
      const float* table = tableOf(plan_.intervals[n], -1);
      for (int l = 0; l < kWidth; ++l) addTable(table, n, layout_.truth, l);
    }
    xDoubts_ = Doubts<S>{};
    xError_ = fitX(seriesAt(layout_.truth), xDoubts_);
  }

  void clearSeries(int variable) {
    for (int i = 0; i <= plan_.order; ++i) S::store(lane(variable + i), S::zero());
  }

  // Own sums are added up over intervals, tails stand beside each other.
  void addTable(const float* table, int interval, int variable, int l) {
    const int p = plan_.order;
    float* own = lane(variable) + l;
    for (int i = 0; i <= p; ++i) own[i * kWidth] += table[i];
    float* tails = lane(variable + p + 1 + interval * p) + l;
    for (int i = 0; i < p; ++i) tails[i * kWidth] = table[p + 1 + i];
  }

  // A series without any variance fails for certain; others must be within range.
  Floats fitX(const Series& x, Doubts<S>& doubts) {
    const Floats moment = at<S>(x.own, 0);
    demandRange<S>(moment, kSmallMoment, kLargeMoment, doubts);
    doubts.flat |= S::lessEqual(moment, S::zero());
    return fitAlone<S>(plan_, x, factorOfX(), lane(layout_.xLast), doubts);
  }

  // Rows, own and cross sums with the reference and the first draw.
  void collectFirstPass() {
    const int statistics = nrOfStatistics(plan_.order), own = ownStatistic(plan_.order, 0);
    clearSeries(layout_.drawn);
    noise_ = S::zero();
    sloped_ = 0;
    for (int n = 0; n < plan_.nrOfIntervals; ++n) fitTrends(n);
    clearPartials(statistics);
    for (int l = 0; l < kWidth; ++l) addFirstPass(l);
    sumPartials(0, own, layout_.cross);
    sumPartials(own, statistics, layout_.own);
  }

  // Mean and slope of one interval for all voxels of the group.
  void fitTrends(int n) {
    const IntervalView& interval = plan_.intervals[n];
    float* values = work_.partials;
    float* products = values + kWidth * kWidth;
    for (int l = 0; l < kWidth; ++l) {
      withCourse(l, interval, [&](const auto* y) {
        lane(layout_.first + n)[l] = static_cast<float>(y[0]);
        const TrendSums<S> sums = trendSums<S>(interval, y);
        S::store(values + l * kWidth, sums.values);
        S::store(products + l * kWidth, sums.products);
      });
    }
    const Trends<S> trends =
        trendsFrom<S>(interval, S::load(lane(layout_.first + n)), S::sumRows(values), S::sumRows(products));
    S::store(lane(layout_.mean + n), trends.mean);
    S::store(lane(layout_.slope + n), trends.slope);
    noise_ = noise_ + trends.noise;
    sloped_ |= S::less(S::zero(), S::magnitude(trends.slope));
  }

  void addFirstPass(int l) {
    for (int n = 0; n < plan_.nrOfIntervals; ++n) {
      const IntervalView& interval = plan_.intervals[n];
      float* row = rowOf(l, interval);
      const float mean = lane(layout_.mean + n)[l], slope = lane(layout_.slope + n)[l];
      withCourse(l, interval, [&](const auto* y) { writeResiduals<S>(interval, mean, slope, y, row); });
      const std::size_t drawn = surrogateOf(l, n, 0);
      if (l + 1 < kWidth) prefetch(surrogateRow(interval, surrogateOf(l + 1, n, 0)), interval.paddedLength);
      work_.segments[n] = {row, {interval.reference, surrogateRow(interval, drawn)}, interval.paddedLength};
      addTable(tableOf(interval, static_cast<std::ptrdiff_t>(drawn)), n, layout_.drawn, l);
      float* tails = lane(layout_.own + plan_.order + 1 + n * plan_.order) + l;
      for (int i = 0; i < plan_.order; ++i) tails[i * kWidth] = row[interval.length - 1 - i];
    }
    addAllLags<S>({work_.segments, plan_.nrOfIntervals}, plan_.order, partialsOf(l));
  }

  // Calls `use` with the interval's first value of lane l's course, in the type of the data.
  template <class Use>
  void withCourse(int l, const IntervalView& interval, Use use) const {
    const std::size_t course =
        voxelOf(l) * static_cast<std::size_t>(plan_.nrOfSets) + static_cast<std::size_t>(interval.set);
    const void* data = batch_.courses[course];
    if (plan_.elements[interval.set] == Element::kFloat) {
      use(static_cast<const float*>(data) + interval.first);
    } else {
      use(static_cast<const std::uint16_t*>(data) + interval.first);
    }
  }

  static int lesser(int a, int b) { return a < b ? a : b; }

  static const float* surrogateRow(const IntervalView& interval, std::size_t row) {
    return interval.surrogates + row * static_cast<std::size_t>(interval.paddedLength);
  }

  static void prefetch(const float* row, int length) {
    for (int t = 0; t < length; t += 16) __builtin_prefetch(row + t);
  }

  float* partialsOf(int l) const { return work_.partials + static_cast<std::ptrdiff_t>(l) * kWidth; }

  void clearPartials(int statistics) {
    const int count = statistics * kWidth;
    for (int i = 0; i < count; ++i)
      S::store(work_.partials + static_cast<std::ptrdiff_t>(i) * kWidth, S::zero());
  }

  void sumPartials(int first, int end, int variable) {
    for (int s = first; s < end; ++s) {
      const float* partials = work_.partials + static_cast<std::ptrdiff_t>(s) * kWidth * kWidth;
      S::store(lane(variable + s - first), S::sumRows(partials));
    }
  }

  // Further draws first ... first + count - 1, at most kMaxRows.
  void computeDraws(int first, int count) {
    const int statistics = count * (2 * plan_.order + 1);
    clearPartials(statistics);
    for (int l = 0; l < kWidth; ++l) addCrossPass(l, first, count);
    sumPartials(0, statistics, layout_.cross);
    for (int row = 0; row < count; ++row) {
      collectTables(first + row);
      computeNull(first + row, crossAt(row));
    }
  }

  void addCrossPass(int l, int first, int count) {
    for (int n = 0; n < plan_.nrOfIntervals; ++n) {
      const IntervalView& interval = plan_.intervals[n];
      LagRows& rows = work_.segments[n];
      rows.voxel = rowOf(l, interval);
      rows.paddedLength = interval.paddedLength;
      for (int row = 0; row < count; ++row)
        rows.references[row] = surrogateRow(interval, surrogateOf(l, n, first + row));
    }
    addCrossLags<S>({work_.segments, plan_.nrOfIntervals}, count, plan_.order, partialsOf(l));
  }

  void collectTables(int draw) {
    clearSeries(layout_.drawn);
    for (int l = 0; l < kWidth; ++l) {
      for (int n = 0; n < plan_.nrOfIntervals; ++n) {
        const std::size_t drawn = surrogateOf(l, n, draw);
        addTable(tableOf(plan_.intervals[n], static_cast<std::ptrdiff_t>(drawn)), n, layout_.drawn, l);
      }
    }
  }

  // A sum of squares of 0 is a flat voxel, unless a slope was removed, or its values are so small
  // that squares vanish.
  void checkOwn() {
    const Floats moment = at<S>(y().own, 0);
    demandRange<S>(moment, kSmallMoment, kLargeMoment, own_);
    own_.unsure |= S::less(moment, noise_);
    own_.flat |= S::lessEqual(moment, S::zero()) & S::less(S::all(kVisibleNoise), noise_) & ~sloped_;
  }

  void computeTruth() {
    Doubts<S> doubts = merged(own_, xDoubts_);
    const Measures<S> measures = computeJoint(seriesAt(layout_.truth), crossAt(0), xError_, doubts);
    store(batch_.measures, 0, measures);
    storeVerdicts(batch_.verdicts + first_, doubts);
  }

  void computeNull(int draw, const float* cross) {
    Doubts<S> doubts = own_;
    const Series x = seriesAt(layout_.drawn);
    const Floats xError = fitX(x, doubts);
    const Measures<S> measures = computeJoint(x, cross, xError, doubts);
    const std::size_t start = static_cast<std::size_t>(draw) * batch_.nullStride;
    store(batch_.nullMeasures, start, measures);
    storeVerdicts(batch_.nullVerdicts + start + first_, doubts);
  }

  static Doubts<S> merged(const Doubts<S>& a, const Doubts<S>& b) {
    return {a.failed | b.failed, a.unsure | b.unsure, a.flat | b.flat, S::larger(a.growth, b.growth)};
  }

  Measures<S> computeJoint(const Series& x, const float* cross, Floats xError, Doubts<S>& doubts) {
    demandRange<S>(at<S>(x.own, 0) * at<S>(y().own, 0), kSmallProduct, kLargeProduct, doubts);
    const JointErrors<S> joint =
        fitJoint<S>(plan_, x, y(), cross, yError_, factor_, lane(layout_.yLast), lane(layout_.xLast), doubts);
    return measure<S>(xError, yError_, at<S>(y().own, 0), joint, doubts);
  }

  void store(float* const* planes, std::size_t start, const Measures<S>& measures) const {
    S::storeAny(planes[0] + start + first_, measures.referenceToVoxel);
    S::storeAny(planes[1] + start + first_, measures.voxelToReference);
    S::storeAny(planes[2] + start + first_, measures.instantaneous);
  }

  void storeVerdicts(Verdict* verdicts, const Doubts<S>& doubts) const {
    const Mask illDefined = doubts.flat | (doubts.failed & ~doubts.unsure),
               unsure = doubts.unsure & ~doubts.flat;
    for (int l = 0; l < kWidth; ++l) {
      const unsigned code = ((illDefined >> l) & 1U) + 2U * ((unsure >> l) & 1U);
      verdicts[l] = static_cast<Verdict>(code);
    }
  }

  const PlanView& plan_;
  const BatchView& batch_;
  const WorkView& work_;
  LaneLayout layout_;
  Factor factor_;
  Doubts<S> xDoubts_;  // of the reference alone
  Floats xError_;

  std::size_t first_ = 0;
  int nrOfVoxels_ = 0;
  Floats noise_;     // sums of squares that rounding of the trends explains
  Mask sloped_ = 0;  // lanes with a slope in any interval
  Doubts<S> own_;
  Floats yError_;
};

template <class S>
void computeBatch(const PlanView& plan, const BatchView& batch, const WorkView& work) {
  GroupKernel<S> kernel(plan, batch, work);
  for (std::size_t first = 0; first < batch.nrOfVoxels; first += S::kWidth) kernel.compute(first);
}

}  // namespace
}  // namespace tav::kernel

#endif
