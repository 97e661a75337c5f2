#include "tav/kernel/plan.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <stdexcept>

#include "tav/kernel/layout.h"

namespace tav::kernel {
namespace {

constexpr std::align_val_t kAlignment{64};

int roundedUp(int n, int unit) {
  return (n + unit - 1) / unit * unit;
}

void requireValid(const PlanSpec& spec) {
  if (spec.order < 1 || spec.order > kMaxOrder)
    throw std::invalid_argument("kernel plan: order out of range");
  if (spec.draws < 1 || spec.draws > kMaxDraws)
    throw std::invalid_argument("kernel plan: draws out of range");
  for (const SetSpec& set : spec.sets) {
    const std::size_t references = set.references.size();
    if (references < 1 || references > extent(kMaxReferences) || references != spec.sets[0].references.size())
      throw std::invalid_argument("kernel plan: references out of range");
    for (const Interval& interval : set.intervals) {
      if (interval.length <= spec.order) throw std::invalid_argument("kernel plan: interval too short");
    }
  }
}

int longestInterval(const PlanSpec& spec) {
  int longest = 0;
  for (const SetSpec& set : spec.sets) {
    for (const Interval& interval : set.intervals) longest = std::max(longest, interval.length);
  }
  return longest;
}

AlignedFloats makeRamp(IntervalView& interval) {
  AlignedFloats ramp(static_cast<std::size_t>(interval.paddedLength));
  const float last = static_cast<float>(interval.length - 1);
  double squares = 0.0;
  for (int t = 0; t < interval.length; ++t) {
    const float u = static_cast<float>(t) / last - 0.5F;
    ramp.data()[t] = u;
    squares += static_cast<double>(u) * static_cast<double>(u);
  }
  interval.ramp = ramp.data();
  interval.rampSquares = static_cast<float>(squares);
  return ramp;
}

}  // namespace

AlignedFloats::AlignedFloats(std::size_t count)
    : floats_(static_cast<float*>(::operator new(count * sizeof(float), kAlignment))) {
  std::memset(floats_.get(), 0, count * sizeof(float));
}

void AlignedFloats::Free::operator()(float* p) const {
  ::operator delete(p, kAlignment);
}

Plan::Plan(const PlanSpec& spec, const Kernel& kernel) : kernel_(&kernel), view_{} {
  requireValid(spec);
  view_.order = spec.order;
  view_.draws = spec.draws;
  view_.leastSquares = spec.leastSquares;
  view_.nrOfSets = static_cast<int>(spec.sets.size());
  view_.nrOfReferences = spec.sets.empty() ? 0 : static_cast<int>(spec.sets[0].references.size());
  for (const SetSpec& set : spec.sets) elements_.push_back(set.element);
  addIntervals(spec);
  view_.nrOfIntervals = static_cast<int>(intervals_.size());
  view_.elements = elements_.data();
  view_.intervals = intervals_.data();
  prepare(spec);
}

void Plan::addIntervals(const PlanSpec& spec) {
  const double longest = longestInterval(spec);
  for (std::size_t s = 0; s < spec.sets.size(); ++s) {
    for (const Interval& interval : spec.sets[s].intervals) {
      IntervalView view{};
      view.set = static_cast<int>(s);
      view.first = interval.first;
      view.length = interval.length;
      view.paddedLength = roundedUp(interval.length, kRowAlign);
      view.rowOffset = view_.rowSize + kRowPad;
      view.scale = spec.leastSquares ? 1.0F : static_cast<float>(std::sqrt(longest / interval.length));
      view.tableStride = static_cast<std::size_t>(
          roundedUp(spec.order + 1 + edgeSize(spec.order, spec.leastSquares), kTableAlign));
      view_.rowSize += static_cast<std::size_t>(view.paddedLength + 2 * kRowPad);
      memory_.push_back(makeRamp(view));
      intervals_.push_back(view);
    }
  }
}

void Plan::prepare(const PlanSpec& spec) {
  const Workspace work(view_, kernel_->width);
  for (std::size_t r = 0; r < extent(view_.nrOfReferences); ++r) {
    for (const IntervalView& interval : intervals_) {
      const SetSpec& set = spec.sets[static_cast<std::size_t>(interval.set)];
      rows_.push_back(prepareRows(spec, interval, set.references[r], work.view()));
    }
  }
  view_.rows = rows_.data();
}

ReferenceRows Plan::prepareRows(const PlanSpec& spec, const IntervalView& interval,
                                const ReferenceSpec& reference, const WorkView& work) {
  const auto surrogates = static_cast<std::size_t>(spec.nrOfSurrogates);
  const auto length = static_cast<std::size_t>(interval.paddedLength);
  float* rows = memory_.emplace_back((surrogates + 1) * length).data();
  float* tables = memory_.emplace_back((surrogates + 1) * interval.tableStride).data();
  kernel_->prepare(
      interval, {spec.order, spec.leastSquares, 1, reference.course + interval.first, 0, rows, tables}, work);
  kernel_->prepare(interval,
                   {spec.order, spec.leastSquares, spec.nrOfSurrogates, reference.surrogates + interval.first,
                    reference.surrogateStride, rows + length, tables + interval.tableStride},
                   work);
  return {rows, rows + length, tables + interval.tableStride};
}

Workspace::Workspace(const PlanView& plan, int width) : view_{} {
  const auto lanes = static_cast<std::size_t>(width);
  const auto slots = keepsRows(plan) ? lanes : 2;
  const auto statistics = static_cast<std::size_t>(mostStatistics(plan.order));
  const auto variables = static_cast<std::size_t>(
      LaneLayout(plan.order, edgeSize(plan.order, plan.leastSquares), plan.nrOfIntervals, plan.nrOfReferences)
          .size);
  rows_ = AlignedFloats(slots * plan.rowSize);
  partials_ = AlignedFloats(statistics * lanes * lanes);
  lanes_ = AlignedFloats(variables * lanes);
  segments_.resize(lanes * static_cast<std::size_t>(plan.nrOfIntervals));
  view_ = {rows_.data(), partials_.data(), lanes_.data(), segments_.data()};
}

}  // namespace tav::kernel
