// Unequal noise, and too little data.
#ifndef TAVMAP_SUITABILITY_NOISE_H
#define TAVMAP_SUITABILITY_NOISE_H

#include <optional>
#include <vector>

#include "suitability/courses.h"

namespace suitability {

inline constexpr int kSamplesPerCoefficient = 10;

// Shares 0 ... 1 of a series' variance that its own past predicts.
struct Predictabilities {
  double reference = 0;
  std::vector<double> voxels;  // those that can be judged; at least one
  [[nodiscard]] double medianVoxel() const;
};
// By models of the order. Nothing when the reference or every voxel cannot be judged.
[[nodiscard]] std::optional<Predictabilities> predictabilities(const Courses& courses, int order);

// The same.
struct UnequalNoise {
  double reference = 0, medianVoxel = 0;
  [[nodiscard]] bool referenceIsNoisier() const { return reference < medianVoxel; }
};

// Measurement noise hides a series' own past, and the cleaner of two series then seems to lead (Nalatore,
// Ding & Rangarajan 2007, Physical Review E 75, 031123, doi:10.1103/PhysRevE.75.031123; Haufe et al. 2013,
// NeuroImage 64, doi:10.1016/j.neuroimage.2012.09.036). Found when the reference is on one side of three
// quarters of the voxels, and away from their median by more than three standard errors of its own value and
// by more than 0.1 where it is noisier, 0.3 where it is cleaner: means over a region are cleaner than voxels.
[[nodiscard]] std::optional<UnequalNoise> findUnequalNoise(const Courses& courses,
                                                           const Predictabilities& shares, int order);

// Samples of a model of the given order that are left of a run's intervals: each loses its first `order`
// volumes, and confounds that were regressed over all volumes of the run take their rank in proportion.
[[nodiscard]] double effectiveSamples(const std::vector<Interval>& intervals, int order, int runVolumes,
                                      int confoundRank);

// Coefficients of the joint model of reference and voxel.
[[nodiscard]] constexpr int jointCoefficients(int order) {
  return 4 * order;
}

}  // namespace suitability

#endif
