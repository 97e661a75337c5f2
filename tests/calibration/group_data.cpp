#include "tests/calibration/group_data.h"

#include <array>
#include <cmath>
#include <numeric>
#include <random>

namespace calibration {

namespace {

constexpr double kSmoothDeviation = 1.5;  // voxels
constexpr io::GridSize kGrid{kGroupEdge, kGroupEdge, kGroupEdge};

// Weights of distances 0 ... 5 whose squares over both sides sum to 1: smoothed white noise keeps its
// variance.
std::array<float, 6> smoothingWeights() {
  std::array<float, 6> weights{};
  double squares = 0;
  for (int i = -5; i <= 5; ++i) squares += std::exp(-i * i / (kSmoothDeviation * kSmoothDeviation));
  for (std::size_t i = 0; i < weights.size(); ++i)
    weights[i] =
        static_cast<float>(std::exp(-static_cast<double>(i * i) / (2 * kSmoothDeviation * kSmoothDeviation)) /
                           std::sqrt(squares));
  return weights;
}

// Around the edges, so that all voxels are alike.
void smoothAlong(std::size_t step, std::vector<float>& map) {
  static const auto kWeights = smoothingWeights();
  constexpr std::size_t kEdge = kGroupEdge;
  std::array<float, kEdge> line{};
  for (std::size_t start = 0; start < map.size(); ++start) {
    if (start / step % kEdge != 0) continue;
    for (std::size_t i = 0; i < kEdge; ++i) line[i] = map[start + i * step];
    for (std::size_t i = 0; i < kEdge; ++i) {
      float sum = kWeights[0] * line[i];
      for (std::size_t d = 1; d < kWeights.size(); ++d)
        sum += kWeights[d] * (line[(i + d) % kEdge] + line[(i + kEdge - d) % kEdge]);
      map[start + i * step] = sum;
    }
  }
}

// Of the same rank as a standard normal x; mean 0, variance 1.
double shaped(double x, GroupNoise noise) {
  if (noise == GroupNoise::kGaussian) return x;
  const double above = 0.5 * std::erfc(x / std::sqrt(2.0));
  if (noise == GroupNoise::kExponential) return -std::log(above) - 1;
  const double alpha = std::sqrt(4 * above * (1 - above));  // the quantile of t with 4 degrees (Shaw 2006)
  const double t = 2 * std::sqrt(std::max(0.0, std::cos(std::acos(alpha) / 3) / alpha - 1));
  return std::copysign(t, x) / std::sqrt(2.0);
}

class Maker {
 public:
  Maker(const GroupCell& cell, unsigned seed) : cell_(cell), random_(seed) {}

  MadeMaps make() {
    MadeMaps made;
    setDesign(made);
    for (int row = 0; row < cell_.rows; ++row) addRow(made, row);
    loseValues(made);
    return made;
  }

 private:
  [[nodiscard]] int second() const { return cell_.second > 0 ? cell_.second : cell_.rows / 2; }
  // At two sites three of four of a group are at one of them.
  [[nodiscard]] bool isSecond(int row) const {
    if (cell_.design == GroupDesign::kTwoSites) return row % 8 < 4 ? row % 4 == 0 : row % 4 != 0;
    return row >= cell_.rows - second();
  }
  [[nodiscard]] bool isOtherSite(int row) const { return row % 8 >= 4; }

  void setDesign(MadeMaps& made) {
    using enum GroupDesign;
    const GroupDesign design = cell_.design;
    for (int row = 0; row < cell_.rows; ++row)
      covariate_.push_back(normal_(random_) + (design == kTwoSamplesCovariate  ? isSecond(row) * 1.0
                                               : design == kOneSampleCovariate ? 1.0
                                                                               : 0.0));
    if (design == kOneSample || design == kPaired) made.model = {{"mean"}, {}, {1}};
    if (design == kTwoSamples || design == kTwoSites) made.model = {{"first", "second"}, {}, {1, -1}};
    if (design == kOneSampleCovariate) made.model = {{"mean", "age"}, {}, {1, 0}};
    if (design == kTwoSamplesCovariate) made.model = {{"first", "second", "age"}, {}, {1, -1, 0}};
    if (design == kCovariate) made.model = {{"mean", "age"}, {}, {0, 1}};
    for (int row = 0; row < cell_.rows; ++row) addDesignRow(made, row);
  }

  void addDesignRow(MadeMaps& made, int row) {
    auto& design = made.model.design;
    if (made.model.columns[0] == "mean") {
      design.push_back(1);
    } else {
      design.push_back(isSecond(row) ? 0 : 1);
      design.push_back(isSecond(row) ? 1 : 0);
    }
    if (made.model.columns.back() == "age") design.push_back(covariate_[static_cast<std::size_t>(row)]);
    if (cell_.design == GroupDesign::kTwoSites) made.blocks.push_back(isOtherSite(row) ? 1 : 0);
  }

  std::vector<float> noise() {
    std::vector<float> map(kGroupVoxels);
    for (float& value : map) value = static_cast<float>(normal_(random_));
    for (const std::size_t step : {std::size_t{1}, std::size_t{kGroupEdge}, kGrid.slice()})
      if (cell_.isSmooth) smoothAlong(step, map);
    for (float& value : map) value = static_cast<float>(shaped(static_cast<double>(value), cell_.noise));
    return map;
  }

  void addRow(MadeMaps& made, int row) {
    std::vector<float> map = noise();
    if (cell_.design == GroupDesign::kPaired) {
      const std::vector<float> other = noise();
      for (std::size_t i = 0; i < map.size(); ++i) map[i] -= other[i];
    }
    const auto deviation = static_cast<float>(isSecond(row) ? cell_.secondDeviation : 1);
    const auto shift = static_cast<float>(nuisance(row));
    for (const float value : map) made.maps.push_back(deviation * value + shift);
  }

  // What no contrast asks for.
  [[nodiscard]] double nuisance(int row) const {
    using enum GroupDesign;
    if (cell_.design == kTwoSites) return isOtherSite(row) ? 2 : 0;
    const bool matters = cell_.design == kOneSampleCovariate || cell_.design == kTwoSamplesCovariate;
    return matters ? 3 * covariate_[static_cast<std::size_t>(row)] : 0;
  }

  void loseValues(MadeMaps& made) {
    if (cell_.missing == 0) return;
    std::uniform_real_distribution<double> share;
    for (std::size_t voxel = 0; voxel < kGroupVoxels; ++voxel) {
      if (share(random_) >= cell_.missing) continue;
      for (int lost = static_cast<int>(3 * share(random_)); lost >= 0; --lost) {
        const auto row = static_cast<std::size_t>(share(random_) * cell_.rows);
        made.maps[row * kGroupVoxels + voxel] = std::nanf("");
      }
    }
  }

  const GroupCell& cell_;
  std::mt19937 random_;
  std::normal_distribution<double> normal_;
  std::vector<double> covariate_;
};

double distance(const std::array<int, 3>& a, const std::array<int, 3>& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

std::vector<float> makeEffect() {
  std::vector<float> effect(kGroupVoxels, 0.0F);
  for (std::size_t i = 0; i < kGroupVoxels; ++i) {
    const auto at = kGrid.voxelAt(i);
    if (distance(at, {5, 5, 5}) <= 3) effect[i] = 1.4F;
    if (distance(at, {13, 13, 13}) <= 5) effect[i] = 0.9F;
  }
  return effect;
}

}  // namespace

MadeMaps makeNullMaps(const GroupCell& cell, unsigned seed) {
  return Maker(cell, seed).make();
}

const std::vector<float>& plantedEffect() {
  static const std::vector<float> effect = makeEffect();
  return effect;
}

const inference::Space& groupSpace() {
  static const inference::Space space = [] {
    std::vector<std::size_t> voxels(kGroupVoxels);
    std::iota(voxels.begin(), voxels.end(), 0U);
    return inference::spaceOfVoxels(kGrid, voxels, 6);
  }();
  return space;
}

}  // namespace calibration
