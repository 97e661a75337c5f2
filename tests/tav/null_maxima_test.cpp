#include "tav/null_maxima.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

using tav::ClusterFinder;
using tav::MapPoint;
using tav::NullMaxima;

// A literal search: merge until nothing changes.
std::vector<double> massesByMerging(const std::vector<MapPoint>& points, float level, int nx, int ny) {
  std::vector<int> label(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) label[i] = static_cast<int>(i);
  const auto touch = [&](std::size_t a, std::size_t b) {
    const int u = static_cast<int>(points[a].voxel), v = static_cast<int>(points[b].voxel);
    return std::abs(u % nx - v % nx) <= 1 && std::abs(u / nx % ny - v / nx % ny) <= 1 &&
           std::abs(u / nx / ny - v / nx / ny) <= 1 && (points[a].value < 0) == (points[b].value < 0);
  };
  for (bool changed = true; changed;) {
    changed = false;
    for (std::size_t a = 0; a < points.size(); ++a)
      for (std::size_t b = 0; b < points.size(); ++b)
        if (label[b] > label[a] && touch(a, b)) label[b] = label[a], changed = true;
  }
  std::vector<double> masses;
  for (std::size_t root = 0; root < points.size(); ++root) {
    double mass = 0;
    for (std::size_t i = 0; i < points.size(); ++i)
      if (label[i] == static_cast<int>(root))
        mass += std::abs(static_cast<double>(points[i].value)) - static_cast<double>(level);
    if (mass > 0) masses.push_back(mass);
  }
  std::sort(masses.rbegin(), masses.rend());
  return masses;
}

TEST(ClusterFinder, EqualsALiteralSearchOnRandomMaps) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> value(-3, 3);
  ClusterFinder finder({5, 4, 3});
  for (int round = 0; round < 300; ++round) {
    std::vector<MapPoint> points;
    for (std::uint32_t voxel = 0; voxel < 60; ++voxel) {
      const float v = value(random);
      if (std::abs(v) > 1.5F && round % 3 != 0) points.push_back({voxel, v});
      if (std::abs(v) > 2.7F && round % 3 == 0) points.push_back({voxel, v});
    }
    const auto expected = massesByMerging(points, 1, 5, 4);
    const auto found = finder.find(points, 1);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i].mass, expected[i], 1e-9);
    EXPECT_NEAR(finder.largestMass(points, 1), expected.empty() ? 0 : expected[0], 1e-9);
  }
}

TEST(ClusterFinder, CornersTouchAndEdgesOfTheGridDoNot) {
  ClusterFinder finder({3, 3, 3});
  EXPECT_EQ(finder.find(std::vector<MapPoint>{{0, 2}, {13, 2}, {26, 2}}, 1).size(), 1U);
  EXPECT_EQ(finder.find(std::vector<MapPoint>{{2, 2}, {3, 2}}, 1).size(), 2U);  // end of a row, next row
  EXPECT_EQ(finder.find(std::vector<MapPoint>{{0, 2}, {1, -2}}, 1).size(), 2U);
}

TEST(ClusterFinder, LeavesNothingBehind) {
  ClusterFinder finder({3, 3, 3});
  const std::vector<MapPoint> points = {{4, 2}, {5, 3}};
  (void)finder.find(points, 1);
  EXPECT_TRUE(finder.find({}, 1).empty());
  EXPECT_DOUBLE_EQ(finder.largestMass(points, 1), 3);
}

TEST(NullMaxima, TakesTheLargestOfAllPieces) {
  NullMaxima maxima(2, 1.5F);
  const std::vector<std::uint32_t> first = {0, 1}, second = {2, 3};
  const float a[] = {1, -2}, b[] = {1.75F, 0}, c[] = {0.5F, 0.25F};
  maxima.take(0, first, a);
  maxima.take(0, second, b);
  maxima.take(1, first, c);
  ClusterFinder finder({4, 1, 1});
  maxima.findClusters(finder);
  EXPECT_EQ(maxima.magnitudes(), (std::vector<float>{0.5F, 2}));
  EXPECT_EQ(maxima.masses(), (std::vector<double>{0, 0.5}));  // -2 and 1.75 do not join
}

TEST(NullMaxima, NotFiniteValuesTakeNoPart) {
  NullMaxima maxima(1, 1);
  const std::vector<std::uint32_t> voxels = {0, 1, 2};
  const float values[] = {NAN, std::numeric_limits<float>::infinity(), 0.75F};
  maxima.take(0, voxels, values);
  ClusterFinder finder({3, 1, 1});
  maxima.findClusters(finder);
  EXPECT_EQ(maxima.magnitudes()[0], 0.75F);
  EXPECT_EQ(maxima.masses()[0], 0);
}

TEST(FamilyWise, PIsTheShareOfDrawsThatReachIt) {
  const std::vector<float> maxima = {1, 2, 3, 4};
  EXPECT_DOUBLE_EQ(tav::correctedP(maxima, 5.0F), 0.2);
  EXPECT_DOUBLE_EQ(tav::correctedP(maxima, 4.0F), 0.4);
  EXPECT_DOUBLE_EQ(tav::correctedP(maxima, 0.5F), 1);
}

TEST(FamilyWise, TheThresholdIsTheSmallestValueThatPasses) {
  std::vector<float> maxima;
  for (int i = 1; i <= 99; ++i) maxima.push_back(static_cast<float>(i));
  for (const double alpha : {0.01, 0.05, 0.1, 0.37}) {
    const float threshold = tav::familyWiseThreshold(maxima, alpha);
    EXPECT_LE(tav::correctedP(maxima, threshold), alpha + 1e-12);
    EXPECT_GT(tav::correctedP(maxima, std::nextafter(threshold, 0.0F)), alpha);
  }
  EXPECT_TRUE(std::isinf(tav::familyWiseThreshold(maxima, 0.005)));
}

}  // namespace
