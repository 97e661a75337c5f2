// Whether a direction survives when time runs backwards.
#ifndef TAVMAP_DIRECTION_CONTROL_H
#define TAVMAP_DIRECTION_CONTROL_H

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "direction/zero_phase_surrogates.h"
#include "simo/lagged_moments.h"
#include "simo/pair_fit.h"
#include "simo/random_stream.h"

namespace direction {

// Surrogates that a difference is compared with, and how many of them may reach it.
inline constexpr int kSurrogates = 59;
inline constexpr double kLevel = 0.05;

// Values first ... first + length - 1 of a run's series, 0-based.
struct Interval {
  int first, length;
};

// One run of a condition: the reference's and a voxel's series over the whole run, and its intervals.
struct RunSeries {
  std::span<const float> reference, voxel;
  const std::vector<Interval>* intervals;
};

struct Verdict {
  double difference = 0;  // D, of the differences DTAV forwards and backwards
  double dtav = 0;        // forwards, not scaled
  int reached = 0;        // surrogates whose |D| is at least as large
  [[nodiscard]] bool isSupported() const {
    return (reached + 1.0) / (kSurrogates + 1.0) <= kLevel && difference * dtav > 0;
  }
};

// D = DTAV - DTAV of the series in reversed time. What is shared without delay gives the same DTAV in both;
// a lead changes sides (Haufe et al. 2013, NeuroImage 64, doi:10.1016/j.neuroimage.2012.09.036;
// Winkler et al. 2016, IEEE Transactions on Signal Processing 64, doi:10.1109/TSP.2015.2498123). D counts
// when it is larger than in 95 of 100 surrogates of the reference that share only what the pair shares at the
// same moment. A lag that blood vessels make is a lag, and is not caught.
class Control {
 public:
  // order: of the models. lengths: of each run's series.
  Control(int order, const std::vector<int>& lengths);

  // One pair; runs in the order of the lengths. Models are least squares over all intervals, each
  // detrended. Nothing when a model is degenerate, of the pair or of a surrogate.
  [[nodiscard]] std::optional<Verdict> judge(const std::vector<RunSeries>& runs, simo::RandomStream& random);

 private:
  struct Moments {
    explicit Moments(int order) : xx(order), yy(order), xy(order) {}
    simo::LaggedMoments xx, yy, xy;
  };
  struct Differences {
    double dtav, difference;
  };

  void loadRuns(const std::vector<RunSeries>& runs);
  void addReference(const std::vector<RunSeries>& runs, const std::vector<std::vector<double>>& references);
  [[nodiscard]] std::optional<Differences> differences();

  std::vector<std::unique_ptr<ZeroPhaseSurrogates>> surrogates_;  // per run
  std::vector<std::vector<double>> references_, voxels_, drawn_;  // per run, detrended over the whole run
  std::vector<double> x_, y_;                                     // of one interval
  Moments moments_;
  simo::PairFit fit_;
};

}  // namespace direction

#endif
