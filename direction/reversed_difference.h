// How much a pair's direction changes when time runs backwards, for very many voxels.
#ifndef TAVMAP_DIRECTION_REVERSED_DIFFERENCE_H
#define TAVMAP_DIRECTION_REVERSED_DIFFERENCE_H

#include <optional>
#include <span>
#include <vector>

#include "direction/control.h"
#include "simo/lagged_moments.h"
#include "simo/pair_fit.h"

namespace direction {

// One run of a condition: the reference's series and the intervals that count.
struct ReferenceRun {
  std::span<const float> reference;
  std::vector<Interval> intervals;
};

// D = DTAV - DTAV of the series in reversed time (control.h), of one reference with voxel after voxel.
// Whatever two series share at the same moment, with whatever noise and memory, has the same DTAV in both
// directions of time, so that D is 0 on average; a lead changes sides (Winkler et al. 2016, IEEE Transactions
// on Signal Processing 64, doi:10.1109/TSP.2015.2498123).
class ReversedDifference {
 public:
  // order: of the models, least squares over all intervals, each detrended. The series are copied.
  ReversedDifference(int order, const std::vector<ReferenceRun>& runs);

  // voxel: its series per run, in the order of the runs, each as long as the reference's. Nothing when a
  // model is degenerate. Allocates nothing after the first call.
  [[nodiscard]] std::optional<double> of(const std::vector<std::vector<float>>& voxel);

 private:
  struct Part {  // one interval
    std::size_t run;
    Interval interval;
    std::vector<double> reference;  // detrended
  };

  std::vector<Part> parts_;
  simo::LaggedMoments xx_, xxReversed_, yy_, xy_;
  std::vector<double> y_;
  simo::PairFit fit_;
};

}  // namespace direction

#endif
