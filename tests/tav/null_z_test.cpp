#include "tav/null_z.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "simo/normal_quantile.h"

namespace {

using tav::VoxelStatus;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Null values of one measure, [draw][voxel], in the layout of a run: the first draw of the whole grid, then
// pieces of the voxels that are not skipped.
struct Nulls {
  std::vector<std::vector<float>> kept;
  std::vector<tav::RawValues> pieces;
  std::vector<VoxelStatus> status;

  Nulls(const std::vector<std::vector<float>>& draws, std::vector<VoxelStatus> statusOfVoxels,
        std::size_t voxelsOfAPiece)
      : status(std::move(statusOfVoxels)) {
    std::vector<std::size_t> taken;
    for (std::size_t v = 0; v < status.size(); ++v)
      if (status[v] != VoxelStatus::kBelowInclusion) taken.push_back(v);
    kept.push_back(draws[0]);
    for (std::size_t first = 0; first < taken.size(); first += voxelsOfAPiece) {
      auto& piece = kept.emplace_back();
      const std::size_t end = std::min(first + voxelsOfAPiece, taken.size());
      for (std::size_t draw = 1; draw < draws.size(); ++draw)
        for (std::size_t i = first; i < end; ++i) piece.push_back(draws[draw][taken[i]]);
    }
    for (const auto& piece : kept)
      pieces.push_back({{piece.data(), piece.data(), piece.data()}, piece.size()});
  }
};

std::vector<float> zOf(const std::vector<float>& observed, const Nulls& nulls, int draws) {
  return tav::nullZ(1, {{observed.data(), observed.data(), observed.data()}, observed.size()},
                    {nulls.pieces, nulls.status, draws});
}

std::vector<VoxelStatus> computed(std::size_t voxels) {
  return std::vector<VoxelStatus>(voxels, VoxelStatus::kComputed);
}

// Voxel 0 has null values around 1, voxel 1 around 10, voxel 2 is skipped, voxel 3 around 100.
const std::vector<std::vector<float>> kDraws = {{1, 20, 0, 50}, {2, 10, 0, 150}, {3, 30, 0, 100}};

std::vector<VoxelStatus> withOneSkipped() {
  auto status = computed(4);
  status[2] = VoxelStatus::kBelowInclusion;
  return status;
}

TEST(NullZ, RanksRatiosToTheVoxelsOwnNullMean) {
  // Ratios to the mean of the others: 1/2.5, 2/2, 3/1.5; 20/20, 10/25, 30/15; 50/125, 150/75, 100/100.
  // Sorted: three of 0.4, three of 1, three of 2.
  const std::vector<float> z = zOf({3, 30, 0, 10}, Nulls(kDraws, withOneSkipped(), 2), 3);
  const auto expected = [](int reached) { return simo::normalQuantile((9.0 - reached + 0.5) / 10.0); };
  EXPECT_NEAR(z[0], expected(3), 1e-6);  // 3 / 2
  EXPECT_NEAR(z[1], expected(3), 1e-6);  // 30 / 20
  EXPECT_TRUE(std::isnan(z[2]));
  EXPECT_NEAR(z[3], expected(9), 1e-6);  // 10 / 100
}

TEST(NullZ, DoesNotDependOnThePieces) {
  const std::vector<float> observed = {3, 8, 0, 500};
  const auto whole = zOf(observed, Nulls(kDraws, withOneSkipped(), 3), 3);
  for (const std::size_t width : {1U, 2U}) {
    const auto parts = zOf(observed, Nulls(kDraws, withOneSkipped(), width), 3);
    for (const std::size_t v : {0U, 1U, 3U}) EXPECT_EQ(parts[v], whole[v]);
  }
}

TEST(NullZ, TakesZerosAsTheSmallValuesThatTheyAre) {
  auto draws = kDraws;
  draws[1][3] = 0;  // 50, 0, 100
  const std::vector<float> z = zOf({3, 0, 0, 200}, Nulls(draws, withOneSkipped(), 4), 3);
  // Ratios of voxel 3: 50 / 50, 0, 100 / 25; with those of the others eight are above 0, one is 0.
  EXPECT_NEAR(z[1], -simo::normalQuantile((8 + 0.5 + 0.5) / 10.0), 1e-6);
  EXPECT_NEAR(z[3], -simo::normalQuantile((1 + 0.5) / 10.0), 1e-6) << "200 / 50, and 4 is reached";
}

TEST(NullZ, HasNoneWithoutNullValuesAboveZero) {
  auto draws = kDraws;
  for (auto& draw : draws) draw[1] = 0;
  EXPECT_TRUE(std::isnan(zOf({3, 30, 0, 200}, Nulls(draws, withOneSkipped(), 4), 3)[1]));
}

TEST(NullZ, HasNoneForOneDrawOrWhatWasNotComputed) {
  EXPECT_TRUE(zOf({1, 2, 3, 4}, Nulls({kDraws[0]}, withOneSkipped(), 2), 1).empty());
  auto status = withOneSkipped();
  status[0] = VoxelStatus::kIllDefined;
  status[3] = VoxelStatus::kNotFinite;
  const auto z = zOf({0, kNan, 1, 4}, Nulls(kDraws, status, 2), 3);
  for (const std::size_t v : {0U, 1U, 2U, 3U}) EXPECT_TRUE(std::isnan(z[v])) << v;
}

TEST(NullZ, IsStandardNormalWhereNothingIsRelated) {
  // Measures of four coefficients, of voxels whose scales differ a hundredfold.
  std::mt19937 random(11);
  std::chi_squared_distribution<float> measure(4);
  constexpr std::size_t kVoxels = 20000, kNullDraws = 20;
  std::vector<float> observed(kVoxels);
  std::vector<std::vector<float>> draws(kNullDraws, std::vector<float>(kVoxels));
  for (std::size_t v = 0; v < kVoxels; ++v) {
    const float scale = 1.0F + static_cast<float>(v % 100);
    observed[v] = scale * measure(random);
    for (auto& draw : draws) draw[v] = scale * measure(random);
  }
  const std::vector<float> z = zOf(observed, Nulls(draws, computed(kVoxels), 500), kNullDraws);
  double sum = 0, squares = 0, cubes = 0;
  for (const float one : z) {
    const auto value = static_cast<double>(one);
    sum += value, squares += value * value, cubes += value * value * value;
  }
  EXPECT_NEAR(sum / kVoxels, 0, 4 / std::sqrt(kVoxels));
  EXPECT_NEAR(squares / kVoxels, 1, 4 * std::sqrt(2.0 / kVoxels));
  EXPECT_NEAR(cubes / kVoxels, 0, 4 * std::sqrt(15.0 / kVoxels)) << "symmetric";
}

TEST(NullZ, IsOfSingleMeasures) {
  EXPECT_EQ(tav::measureOf(tav::REF2VOX), 0);
  EXPECT_EQ(tav::measureOf(tav::VOX2REF), 1);
  EXPECT_EQ(tav::measureOf(tav::INST), 2);
  EXPECT_EQ(tav::measureOf(tav::DTAV), std::nullopt);
}

}  // namespace
