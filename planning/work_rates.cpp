#include "planning/work_rates.h"

#include <algorithm>

namespace planning {
namespace {

double slope(double small, double large, double fewer, double more) {
  return std::max(0.0, (large - small) / (more - fewer));
}

}  // namespace

Rates ratesFrom(const Times& small, const Times& large, std::size_t references, const Volumes& volumes) {
  const auto fewer = static_cast<double>(small.voxels), more = static_cast<double>(large.voxels);
  const auto further = static_cast<double>(std::max<std::size_t>(references, 2) - 1);
  const double smallEach = std::max(0.0, (small.several - small.one) / further),
               largeEach = std::max(0.0, (large.several - large.one) / further);
  Rates rates;
  rates.importPerValue = large.import / (more * volumes.stored);
  rates.referencePerVoxel = slope(smallEach, largeEach, fewer, more);
  rates.referenceFixed = std::max(0.0, largeEach - rates.referencePerVoxel * more);
  const double onePerVoxel = slope(small.one, large.one, fewer, more);
  rates.passPerVoxel = std::max(0.0, onePerVoxel - rates.referencePerVoxel);
  rates.passFixed = std::max(0.0, large.one - onePerVoxel * more - rates.referenceFixed);
  rates.volumes = volumes.ofConditions;
  return rates;
}

}  // namespace planning
