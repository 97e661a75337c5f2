// Everything that depends on references and their surrogates alone, prepared once for all voxels of
// a condition, and the scratch memory of the kernels.
#ifndef TAVMAP_TAV_KERNEL_PLAN_H
#define TAVMAP_TAV_KERNEL_PLAN_H

#include <cstddef>
#include <memory>
#include <vector>

#include "tav/kernel/dispatch.h"
#include "tav/kernel/plan_view.h"

namespace tav::kernel {

// Values first ... first + length - 1 of a course, 0-based.
struct Interval {
  int first;
  int length;
};

// A reference's own course in one set, and its surrogates over the same volumes.
struct ReferenceSpec {
  const float* course;
  const float* surrogates;      // row after row
  std::size_t surrogateStride;  // values from row to row
};

// One course per voxel, and the references with which it is compared, in the same order in all sets.
struct SetSpec {
  Element element;
  std::vector<ReferenceSpec> references;
  std::vector<Interval> intervals;
};

struct PlanSpec {
  int order;
  int draws;
  bool leastSquares;
  int nrOfSurrogates;
  std::vector<SetSpec> sets;
};

// Floats on 64-byte boundaries, zero at first.
class AlignedFloats {
 public:
  AlignedFloats() = default;
  explicit AlignedFloats(std::size_t count);
  [[nodiscard]] float* data() const { return floats_.get(); }

 private:
  struct Free {
    void operator()(float* p) const;
  };
  std::unique_ptr<float, Free> floats_;
};

// The tables of some references and one condition. What the spec points at is not needed after the
// construction. Order 1 ... kMaxOrder, draws 1 ... kMaxDraws, 1 ... kMaxReferences references,
// intervals longer than the order; other values throw std::invalid_argument.
// Memory: 4 bytes x references x surrogates x (values of all intervals + 2 order + 4).
class Plan {
 public:
  Plan(const PlanSpec& spec, const Kernel& kernel);

  [[nodiscard]] const PlanView& view() const { return view_; }
  [[nodiscard]] const Kernel& kernel() const { return *kernel_; }

 private:
  void addIntervals(const PlanSpec& spec);
  void prepare(const PlanSpec& spec);
  ReferenceRows prepareRows(const PlanSpec& spec, const IntervalView& interval,
                            const ReferenceSpec& reference, const WorkView& work);

  const Kernel* kernel_;
  PlanView view_;
  std::vector<Element> elements_;
  std::vector<IntervalView> intervals_;
  std::vector<ReferenceRows> rows_;
  std::vector<AlignedFloats> memory_;
};

// Scratch memory for one thread's calls with one plan: at most about 0.6 MB, and for several draws
// or references 16 rows of all intervals.
class Workspace {
 public:
  explicit Workspace(const PlanView& plan, int width);
  [[nodiscard]] const WorkView& view() const { return view_; }

 private:
  AlignedFloats rows_, partials_, lanes_;
  std::vector<LagRows> segments_;
  WorkView view_;
};

}  // namespace tav::kernel

#endif
