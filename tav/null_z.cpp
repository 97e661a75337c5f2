#include "tav/null_z.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "simo/normal_quantile.h"
#include "tav/null_p.h"

namespace tav {
namespace {

constexpr float kNoZ = std::numeric_limits<float>::quiet_NaN();

// Small measures are 0 in single precision: a value like any other. So are, in few voxels, draws that could
// not be computed.
bool isMeasure(float value) {
  return std::isfinite(value) && value >= 0.0F;
}

// Sums of the null values of one voxel.
struct OwnNulls {
  double sum = 0;
  int count = 0;

  void add(float value) {
    if (isMeasure(value)) sum += static_cast<double>(value), ++count;
  }
  [[nodiscard]] float ratioTo(float observed) const { return ratio(observed, sum, count); }
  // Of one of the values, over the mean of the others.
  [[nodiscard]] float ratioToOthers(float value) const {
    return ratio(value, sum - static_cast<double>(value), count - 1);
  }

 private:
  static float ratio(float value, double sumOfNulls, int nulls) {
    if (nulls < 1 || !(sumOfNulls > 0) || !isMeasure(value)) return kNoZ;
    return static_cast<float>(static_cast<double>(value) * nulls / sumOfNulls);
  }
};

// The null values of one measure, voxel by voxel.
class ByVoxel {
 public:
  ByVoxel(int measure, const NullDraws& nulls)
      : measure_(static_cast<std::size_t>(measure)),
        nulls_(nulls),
        further_(static_cast<std::size_t>(nulls.drawsPerVoxel) - 1) {
    for (std::size_t i = 0; i < nulls.status.size(); ++i)
      if (nulls.status[i] != VoxelStatus::kBelowInclusion) voxels_.push_back(i);
  }

  // use(voxel, value) for every null value, in the order in which they are kept.
  template <class Use>
  void forEachValue(Use use) const {
    for (const std::size_t voxel : voxels_) use(voxel, nulls_.pieces[0].measures[measure_][voxel]);
    std::size_t first = 0;
    for (std::size_t piece = 1; piece < nulls_.pieces.size(); ++piece) {
      const RawValues& raw = nulls_.pieces[piece];
      const std::size_t width = raw.size / further_;
      for (std::size_t i = 0; i < raw.size; ++i) use(voxels_[first + i % width], raw.measures[measure_][i]);
      first += width;
    }
  }

 private:
  std::size_t measure_;
  const NullDraws& nulls_;
  std::size_t further_;
  std::vector<std::size_t> voxels_;
};

// The ratios of all null values, as observed ones are held against them.
struct NullRatios {
  std::vector<float> positive;
  std::size_t zeros = 0;

  void add(float ratio) {
    if (ratio > 0) positive.push_back(ratio);
    if (ratio == 0) ++zeros;
  }
  // Of the mid-rank of an observed ratio that so many null ratios reach; of 0 half of those that are 0.
  [[nodiscard]] float zOf(double reaching) const {
    const double all = static_cast<double>(positive.size() + zeros);
    return static_cast<float>(-simo::normalQuantile((reaching + 0.5) / (all + 1.0)));
  }
  [[nodiscard]] float zOfZero() const {
    return zOf(static_cast<double>(positive.size()) + 0.5 * static_cast<double>(zeros));
  }
  // p: (1 + reaching) / (1 + positive ones).
  [[nodiscard]] float zOfP(float p) const {
    return zOf(static_cast<double>(p) * (1.0 + static_cast<double>(positive.size())) - 1.0);
  }
};

}  // namespace

std::optional<int> measureOf(MapType type) {
  switch (type) {
    case REF2VOX:
      return 0;
    case VOX2REF:
      return 1;
    case INST:
      return 2;
    default:
      return std::nullopt;
  }
}

std::vector<float> nullZ(int measure, const RawValues& observed, const NullDraws& nulls) {
  if (nulls.drawsPerVoxel < 2) return {};
  const ByVoxel byVoxel(measure, nulls);
  std::vector<OwnNulls> own(nulls.status.size());
  byVoxel.forEachValue([&](std::size_t voxel, float value) {
    if (nulls.status[voxel] == VoxelStatus::kComputed) own[voxel].add(value);
  });
  NullRatios ratios;
  byVoxel.forEachValue([&](std::size_t voxel, float value) { ratios.add(own[voxel].ratioToOthers(value)); });
  std::vector<float> z(observed.size);
  for (std::size_t i = 0; i < z.size(); ++i)
    z[i] = own[i].ratioTo(observed.measures[static_cast<std::size_t>(measure)][i]);
  const std::vector<float> p = nullPValues(StoredMap({z}), StoredMap({ratios.positive}));
  for (std::size_t i = 0; i < z.size(); ++i)
    z[i] = z[i] == 0 ? ratios.zOfZero() : std::isnan(p[i]) ? kNoZ : ratios.zOfP(p[i]);
  return z;
}

}  // namespace tav
