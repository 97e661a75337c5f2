// A group of W = kWidth voxels of a batch, one per lane, and where its data stand. Included once per
// CPU file, behind its Simd.
//
// Lanes of a last, incomplete group repeat its first voxel. A lane never sees its neighbours, so
// the size of groups and batches does not change a result.
#ifndef TAVMAP_TAV_KERNEL_GROUP_INL_H
#define TAVMAP_TAV_KERNEL_GROUP_INL_H

#include "tav/kernel/fit-inl.h"
#include "tav/kernel/lag_sums-inl.h"
#include "tav/kernel/layout.h"
#include "tav/kernel/plan_view.h"

namespace tav::kernel {
namespace {

// The true reference, where a draw is asked for.
inline constexpr int kTruth = -1;

// A plan whose order and form the compiler knows, so that the many short loops over it vanish; of
// kOrder 0, of any order.
template <int kOrder, bool kLeastSquares>
struct OrderedPlan : PlanView {
  explicit OrderedPlan(const PlanView& plan) : PlanView(plan) {}
  static constexpr int kKnownOrder = kOrder, order = kOrder;
  static constexpr bool leastSquares = kLeastSquares;
};
template <bool kLeastSquares>
struct OrderedPlan<0, kLeastSquares> : PlanView {
  explicit OrderedPlan(const PlanView& plan) : PlanView(plan) {}
  static constexpr int kKnownOrder = 0;
  static constexpr bool leastSquares = kLeastSquares;
};

template <class S, class View>
struct Group {
  static constexpr int kWidth = S::kWidth;

  Group(const View& planView, const BatchView& batchView, const WorkView& workView)
      : plan(planView),
        batch(batchView),
        work(workView),
        edges(edgeSize(planView.order, planView.leastSquares)),
        layout(planView.order, edges, planView.nrOfIntervals, planView.nrOfReferences) {}

  // Goes to voxels first ... first + W - 1, as far as the batch has them.
  void moveTo(std::size_t voxel) {
    first = voxel;
    const std::size_t left = batch.nrOfVoxels - voxel;
    nrOfVoxels = left < kWidth ? static_cast<int>(left) : kWidth;
  }

  [[nodiscard]] float* lane(int variable) const {
    return work.lanes + static_cast<std::ptrdiff_t>(variable) * kWidth;
  }
  [[nodiscard]] Series seriesAt(int variable) const {
    return {lane(variable), lane(variable + plan.order + 1)};
  }
  // Shift 0 of a row of the cross sums.
  [[nodiscard]] const float* crossAt(int row) const {
    return lane(layout.cross + crossStatistic(plan.order, row, 0));
  }
  [[nodiscard]] std::size_t voxelOf(int l) const {
    return first + static_cast<std::size_t>(l < nrOfVoxels ? l : 0);
  }
  // Every lane keeps its rows when further passes need them; otherwise neighbours take turns.
  [[nodiscard]] float* rowOf(int l, const IntervalView& interval) const {
    const std::size_t slot = static_cast<std::size_t>(keepsRows(plan) ? l : l % 2);
    return work.rows + slot * plan.rowSize + interval.rowOffset;
  }
  [[nodiscard]] const ReferenceRows& rowsOf(int reference, int interval) const {
    return plan.rows[static_cast<std::ptrdiff_t>(reference) * plan.nrOfIntervals + interval];
  }
  // A draw's rows of the interval's surrogates, one per lane.
  [[nodiscard]] const std::uint32_t* drawnRows(int reference, int interval, int draw) const {
    const ReferenceBatch& of = batch.references[reference];
    return of.surrogates +
           static_cast<std::size_t>((View::leastSquares ? 0 : interval) * plan.draws + draw) * of.stride +
           first;
  }

  // Calls `use` with the interval's first value of lane l's course, in the type of the data.
  template <class Use>
  void withCourse(int l, const IntervalView& interval, Use use) const {
    const std::size_t course =
        voxelOf(l) * static_cast<std::size_t>(plan.nrOfSets) + static_cast<std::size_t>(interval.set);
    const void* data = batch.courses[course];
    if (plan.elements[interval.set] == Element::kFloat) {
      use(static_cast<const float*>(data) + interval.first);
    } else {
      use(static_cast<const std::uint16_t*>(data) + interval.first);
    }
  }

  const View& plan;
  const BatchView& batch;
  const WorkView& work;
  int edges;  // values per interval
  LaneLayout layout;
  std::size_t first = 0;
  int nrOfVoxels = 0;
};

}  // namespace
}  // namespace tav::kernel

#endif
