// What whole maps of unrelated references reach: the largest magnitude and the largest cluster of each.
#ifndef TAVMAP_TAV_NULL_MAXIMA_H
#define TAVMAP_TAV_NULL_MAXIMA_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tav/clusters.h"

namespace tav {

// One kind of map under many draws, taken piece by piece: a draw is one surrogate against the whole
// brain, so that the brain's own smoothness is in its maximum (Nichols & Holmes 2002, Human Brain
// Mapping 15, doi:10.1002/hbm.1058).
class NullMaxima {
 public:
  // level: magnitudes from it on form clusters.
  NullMaxima(std::size_t draws, float level);

  // Values of one draw at these voxels of the grid. Zeros are no values: they stand for what could not
  // be computed. Not finite values take no part.
  void take(std::size_t draw, std::span<const std::uint32_t> voxels, const float* values);
  // When all pieces are taken: the largest mass of each draw, for which its points are given up.
  void findClusters(ClusterFinder& finder);

  [[nodiscard]] float level() const { return level_; }
  // Ascending, one per draw, once findClusters() was called.
  [[nodiscard]] const std::vector<float>& magnitudes() const { return magnitudes_; }
  [[nodiscard]] const std::vector<double>& masses() const { return masses_; }

 private:
  float level_;
  std::vector<float> magnitudes_;
  std::vector<double> masses_;
  std::vector<std::vector<MapPoint>> points_;  // per draw
};

// (1 + number of draws that reach the value) / (1 + draws): Phipson & Smyth 2010, Statistical
// Applications in Genetics and Molecular Biology 9, doi:10.2202/1544-6115.1585. `ascending` is sorted.
template <class T>
[[nodiscard]] double correctedP(const std::vector<T>& ascending, T value);

// The smallest value whose corrected p is at most alpha: the next one above a draw's. Infinity when
// there are too few draws for this alpha.
[[nodiscard]] float familyWiseThreshold(const std::vector<float>& ascending, double alpha);

}  // namespace tav

#endif
