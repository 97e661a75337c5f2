#include "inference/enhancer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tests/inference/made_data.h"

namespace {

using inference::Enhancement;
using inference::Enhancer;
using inference::Space;

bool touch(const Space& space, std::size_t a, std::size_t b) {
  for (std::size_t k = 0; k < space.width; ++k)
    if (space.neighbours[a * space.width + k] == static_cast<std::int32_t>(b)) return true;
  for (std::size_t i = 0; i < space.hubWidth; ++i)
    for (std::size_t j = 0; j < space.hubWidth; ++j)
      if (space.hubs[a * space.hubWidth + i] == space.hubs[b * space.hubWidth + j]) return true;
  return false;
}

// Places connected to `seed` at or above the height, by asking every pair.
std::size_t extentAt(const Space& space, const std::vector<float>& z, std::size_t seed, double height) {
  std::vector<std::size_t> found = {seed};
  std::vector<bool> isFound(z.size(), false);
  isFound[seed] = true;
  for (std::size_t next = 0; next < found.size(); ++next)
    for (std::size_t other = 0; other < z.size(); ++other)
      if (!isFound[other] && static_cast<double>(z[other]) >= height && touch(space, found[next], other)) {
        isFound[other] = true;
        found.push_back(other);
      }
  return found.size();
}

// Piece by piece between the heights that occur, each an integral of a power.
double integralAt(const Space& space, const std::vector<float>& z, std::size_t place,
                  const Enhancement& how) {
  std::vector<double> heights = {0};
  for (const float value : z)
    if (value > 0 && value <= z[place]) heights.push_back(static_cast<double>(value));
  std::sort(heights.begin(), heights.end());
  double sum = 0;
  for (std::size_t i = 1; i < heights.size(); ++i) {
    const double extent = static_cast<double>(extentAt(space, z, place, heights[i])),
                 power = how.heightPower + 1;
    sum += std::pow(extent, how.extentPower) *
           (std::pow(heights[i], power) - std::pow(heights[i - 1], power)) / power;
  }
  return sum;
}

double sumAt(const Space& space, const std::vector<float>& z, std::size_t place, const Enhancement& how) {
  double sum = 0;
  for (int k = 1; k * how.step <= static_cast<double>(z[place]); ++k) {
    const double height = k * how.step;
    sum += std::pow(static_cast<double>(extentAt(space, z, place, height)), how.extentPower) *
           std::pow(height, how.heightPower);
  }
  return sum;
}

std::vector<float> waves(std::size_t n, unsigned seed) {
  std::vector<float> z = made::noise(1, n, seed).at;
  for (std::size_t i = 0; i < n; ++i) z[i] = 1.3F * z[i] + std::sin(static_cast<float>(i) / 9);
  return z;
}

void expectIntegrals(const Space& space, const std::vector<float>& z, const Enhancement& how) {
  std::vector<float> opposite = z;
  for (float& value : opposite) value = -value;
  Enhancer enhancer(space, how);
  const std::vector<float> map = enhancer.enhance(z, true);
  float largest = 0;
  for (std::size_t i = 0; i < z.size(); ++i) {
    const double expected = z[i] > 0   ? integralAt(space, z, i, how)
                            : z[i] < 0 ? -integralAt(space, opposite, i, how)
                                       : 0;
    EXPECT_NEAR(map[i], expected, 1e-5 * (1 + std::abs(expected))) << i;
    largest = std::max(largest, std::abs(map[i]));
  }
  EXPECT_EQ(enhancer.largest(z, true), largest);
}

TEST(Enhancer, IsTheIntegralOverHeightsForEveryConnectivity) {
  for (const int connectivity : {6, 18, 26})
    expectIntegrals(made::cube(4, connectivity), waves(64, static_cast<unsigned>(connectivity)), {});
}

TEST(Enhancer, TakesOtherPowers) {
  expectIntegrals(made::cube(5), waves(125, 3), {1, 1.5, 0});
}

TEST(Enhancer, LetsEdgesTouchAtTheirNodes) {
  std::vector<std::pair<int, int>> edges;
  for (int from = 0; from < 9; ++from)
    for (int to = from + 1; to < 9; ++to)
      if ((from + 2 * to) % 3 != 0) edges.emplace_back(from, to);
  expectIntegrals(inference::spaceOfEdges(9, edges), waves(edges.size(), 4), {});
}

TEST(Enhancer, IsUnchangedByEqualHeights) {
  std::vector<float> z = waves(125, 5);
  for (float& value : z) value = std::round(2 * value) / 2;
  expectIntegrals(made::cube(5), z, {});
}

TEST(Enhancer, SumsOverStepsWhenAsked) {
  const Space space = made::cube(5);
  const std::vector<float> z = waves(125, 6);
  const Enhancement how{0.5, 2, 0.1};
  const std::vector<float> map = Enhancer(space, how).enhance(z, true);
  for (std::size_t i = 0; i < z.size(); ++i)
    if (z[i] > 0) {
      EXPECT_NEAR(map[i], sumAt(space, z, i, how), 1e-4 * (1 + std::abs(static_cast<double>(map[i]))));
    }
}

TEST(Enhancer, LeavesNegativeSidesWhereOneIsAsked) {
  const std::vector<float> z = waves(125, 7);
  const std::vector<float> map = Enhancer(made::cube(5), {}).enhance(z, false);
  for (std::size_t i = 0; i < z.size(); ++i) EXPECT_EQ(map[i] > 0, z[i] > 0);
}

}  // namespace
