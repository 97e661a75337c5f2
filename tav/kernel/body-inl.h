// The kernel: measures of a batch of voxels, W = kWidth of them at a time. Included once per CPU
// file, behind its Simd. Everything here has internal linkage, so that no function compiled for
// one CPU can be linked into code for another.
//
// For each group of W voxels
//
//     courses --collect-inl.h--> lag sums, one lane per voxel --fit-inl.h--> error variances
//                                                                                |
//                              measures and verdicts <--measures-inl.h-----------+
//
// The voxels' own part comes first; then, for each reference, the true one and its surrogates.
#ifndef TAVMAP_TAV_KERNEL_BODY_INL_H
#define TAVMAP_TAV_KERNEL_BODY_INL_H

#include "tav/kernel/collect-inl.h"
#include "tav/kernel/group-inl.h"
#include "tav/kernel/measures-inl.h"

namespace tav::kernel {
namespace {

// Moments outside this range, or pairs of them whose product is outside kProductRange, leave the
// range of single precision somewhere on the reference's way; it decides about them.
inline constexpr float kSmallMoment = 1e-20F, kLargeMoment = 1e20F;
inline constexpr float kSmallProduct = 1e-24F, kLargeProduct = 1e30F;
// Noise of a mean that is far above the values whose squares vanish in single precision.
inline constexpr float kVisibleNoise = 1e-36F;

// A model of one series alone.
template <class S, class View>
struct SingleFit {
  Doubts<S, View> doubts;
  typename S::Floats error{};
};

template <class S, class View>
class GroupKernel {
 public:
  GroupKernel(const View& plan, const BatchView& batch, const WorkView& work)
      : plan_(plan), batch_(batch), group_(plan, batch, work), layout_(group_.layout), collector_(group_) {
    linkFactor();
    for (int r = 0; r < plan.nrOfReferences; ++r) fitReference(r);
  }

  // Voxels first ... first + W - 1, as far as the batch has them.
  void compute(std::size_t first) {
    group_.moveTo(first);
    fitVoxels(collector_.collectVoxels());
    if (plan_.nrOfReferences == 1) {
      computeDraws(0, kTruth, 2);
      return computeFrom(0, 1);
    }
    for (int r = 0; r < plan_.nrOfReferences; ++r) computeFrom(r, kTruth);
  }

 private:
  using Floats = typename S::Floats;
  using Mask = typename S::Mask;
  static constexpr int kWidth = S::kWidth;

  [[nodiscard]] float* lane(int variable) const { return group_.lane(variable); }
  [[nodiscard]] Series y() const { return group_.seriesAt(layout_.own); }
  [[nodiscard]] int truthAt(int reference) const { return layout_.truth + reference * layout_.seriesSize; }
  static int lesser(int a, int b) { return a < b ? a : b; }

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
  [[nodiscard]] Factor factorOfX() const {
    Factor factor{};
    for (int i = 0; i < plan_.order; ++i) factor.rows[i] = factor_.rows[plan_.order + i];
    factor.inverse = lane(layout_.inverse + plan_.order);
    factor.probe = lane(layout_.probe + plan_.order);
    return factor;
  }

  void fitReference(int reference) {
    collector_.collectSeries(reference, kTruth, truthAt(reference));
    truth_[reference] = fitX(group_.seriesAt(truthAt(reference)), Doubts<S, View>{});
  }

  // A series without any variance fails for certain; others must be within range.
  SingleFit<S, View> fitX(const Series& x, Doubts<S, View> doubts) {
    const Floats moment = at<S>(x.own, 0);
    demandRange<S>(moment, kSmallMoment, kLargeMoment, doubts);
    doubts.flat |= S::lessEqual(moment, S::zero());
    const Floats error = fitAlone<S>(plan_, x, factorOfX(), lane(layout_.xLast), doubts);
    return {doubts, error};
  }

  // A sum of squares of 0 is a flat voxel, unless a slope was removed, or its values are so small
  // that squares vanish.
  void fitVoxels(const TrendNotes<S>& trends) {
    Doubts<S, View> doubts{};
    const Floats moment = at<S>(y().own, 0);
    demandRange<S>(moment, kSmallMoment, kLargeMoment, doubts);
    doubts.unsure |= S::less(moment, trends.noise);
    if (View::leastSquares) doubts.unsure |= S::less(moment, trends.digits);
    doubts.flat |=
        S::lessEqual(moment, S::zero()) & S::less(S::all(kVisibleNoise), trends.noise) & ~trends.sloped;
    const Floats error = fitAlone<S>(plan_, y(), factor_, lane(layout_.yLast), doubts);
    voxels_ = {doubts, error};
  }

  // The draws from `first` on.
  void computeFrom(int reference, int first) {
    for (int draw = first; draw < plan_.draws; draw += kMaxRows) {
      const int count = lesser(kMaxRows, plan_.draws - draw);
      collector_.collectCross(reference, draw, count);
      computeDraws(reference, draw, count);
    }
  }

  // Draws whose cross sums stand in rows 0 ... count - 1.
  void computeDraws(int reference, int first, int count) {
    for (int row = 0; row < count; ++row) {
      if (first + row == kTruth) {
        computeTruth(reference, group_.crossAt(row));
      } else {
        computeNull(reference, first + row, group_.crossAt(row));
      }
    }
  }

  void computeTruth(int reference, const float* cross) {
    SingleFit<S, View> alone = truth_[reference];
    alone.doubts = merged(voxels_.doubts, alone.doubts);
    const Measures<S> measures = computeJoint(group_.seriesAt(truthAt(reference)), cross, alone);
    const ReferenceBatch& out = batch_.references[reference];
    store(out.measures, 0, measures);
    storeVerdicts(out.verdicts + group_.first, alone.doubts);
  }

  void computeNull(int reference, int draw, const float* cross) {
    collector_.collectSeries(reference, draw, layout_.drawn);
    const Series x = group_.seriesAt(layout_.drawn);
    SingleFit<S, View> alone = fitX(x, voxels_.doubts);
    const Measures<S> measures = computeJoint(x, cross, alone);
    const ReferenceBatch& out = batch_.references[reference];
    const std::size_t start = static_cast<std::size_t>(draw) * out.stride;
    store(out.nullMeasures, start, measures);
    storeVerdicts(out.nullVerdicts + start + group_.first, alone.doubts);
  }

  static Doubts<S, View> merged(const Doubts<S, View>& a, const Doubts<S, View>& b) {
    return {a.failed | b.failed, a.unsure | b.unsure, a.flat | b.flat, S::larger(a.growth, b.growth)};
  }

  Measures<S> computeJoint(const Series& x, const float* cross, SingleFit<S, View>& alone) {
    const Floats ySquares = at<S>(y().own, 0);
    demandRange<S>(at<S>(x.own, 0) * ySquares, kSmallProduct, kLargeProduct, alone.doubts);
    const JointErrors<S> joint = fitJoint<S>(plan_, x, y(), cross, voxels_.error, factor_,
                                             lane(layout_.yLast), lane(layout_.xLast), alone.doubts);
    return measure<S>(alone.error, voxels_.error, ySquares, joint, alone.doubts);
  }

  void store(float* const* planes, std::size_t start, const Measures<S>& measures) const {
    S::storeAny(planes[0] + start + group_.first, measures.referenceToVoxel);
    S::storeAny(planes[1] + start + group_.first, measures.voxelToReference);
    S::storeAny(planes[2] + start + group_.first, measures.instantaneous);
  }

  static void storeVerdicts(Verdict* verdicts, const Doubts<S, View>& doubts) {
    const Mask illDefined = doubts.flat | (doubts.failed & ~doubts.unsure),
               unsure = doubts.unsure & ~doubts.flat;
    if ((illDefined | unsure) == 0) {
      for (int l = 0; l < kWidth; ++l) verdicts[l] = Verdict::kDone;
      return;
    }
    for (int l = 0; l < kWidth; ++l) {
      const unsigned code = ((illDefined >> l) & 1U) + 2U * ((unsure >> l) & 1U);
      verdicts[l] = static_cast<Verdict>(code);
    }
  }

  const View& plan_;
  const BatchView& batch_;
  Group<S, View> group_;
  const LaneLayout& layout_;
  Collector<S, View> collector_;
  Factor factor_;
  SingleFit<S, View> truth_[extent(kMaxReferences)];  // the references alone
  SingleFit<S, View> voxels_;                         // the group's voxels alone
};

template <class S, int kOrder, bool kLeastSquares>
[[gnu::always_inline]] inline void computeGroups(const PlanView& plan, const BatchView& batch,
                                                 const WorkView& work) {
  using View = OrderedPlan<kOrder, kLeastSquares>;
  const View ordered(plan);
  GroupKernel<S, View> kernel(ordered, batch, work);
  for (std::size_t first = 0; first < batch.nrOfVoxels; first += S::kWidth) kernel.compute(first);
}

// Of order 1 everything is inlined: its loops vanish, and what is left is mostly arithmetic.
template <class S, bool kLeastSquares>
[[gnu::flatten, gnu::noinline]] void computeOrder1(const PlanView& plan, const BatchView& batch,
                                                   const WorkView& work) {
  computeGroups<S, 1, kLeastSquares>(plan, batch, work);
}

template <class S, bool kLeastSquares>
void computeForm(const PlanView& plan, const BatchView& batch, const WorkView& work) {
  if (plan.order == 1) return computeOrder1<S, kLeastSquares>(plan, batch, work);
  computeGroups<S, 0, kLeastSquares>(plan, batch, work);
}

template <class S>
void computeBatch(const PlanView& plan, const BatchView& batch, const WorkView& work) {
  if (plan.leastSquares) return computeForm<S, true>(plan, batch, work);
  computeForm<S, false>(plan, batch, work);
}

}  // namespace
}  // namespace tav::kernel

#endif
