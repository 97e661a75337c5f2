// What is planted must be in the courses: coefficients and measures come back by least squares.
#include "simulation/course_simulator.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/simulation/normal_equations.h"

namespace {

using least_squares::fit;
using least_squares::past;
using least_squares::present;
using simulation::CourseSimulator;
using simulation::InfluenceModel;
using simulation::Kind;
using simulation::NoiseStream;

constexpr std::size_t kVoxelsPerRegion = 4;
constexpr int kPoints = 40000;
constexpr double kTolerance = 4.5 / 200;  // standard errors of 1/sqrt(kPoints)

using Course = std::vector<double>;

struct Courses {
  InfluenceModel model = simulation::plantedModel(1);
  std::vector<Course> voxels;  // 4 of label 0, then 4 of each region
  Course reference;
  std::vector<Course> regionMeans;
};

std::vector<std::int32_t> labels() {
  std::vector<std::int32_t> result;
  for (std::int32_t label = 0; label <= 9; ++label) result.insert(result.end(), kVoxelsPerRegion, label);
  return result;
}

Courses simulate() {
  Courses courses;
  NoiseStream random(11, 0, 1);
  CourseSimulator simulator(courses.model, labels(), random);
  courses.voxels.resize(10 * kVoxelsPerRegion);
  courses.regionMeans.assign(9, Course(kPoints, 0));
  for (std::size_t t = 0; t < kPoints; ++t) {
    const std::vector<double>& values = simulator.next();
    courses.reference.push_back(simulator.reference());
    for (std::size_t v = 0; v < values.size(); ++v) {
      courses.voxels[v].push_back(values[v]);
      if (v >= kVoxelsPerRegion)
        courses.regionMeans[v / kVoxelsPerRegion - 1][t] += values[v] / double{kVoxelsPerRegion};
    }
  }
  return courses;
}

const Courses& courses() {
  static const Courses once = simulate();
  return once;
}

const Course& firstVoxelOf(std::size_t region) {
  return courses().voxels[(region + 1) * kVoxelsPerRegion];
}

TEST(CourseSimulator, MeanOfTheReferenceRegionIsTheReferenceCourse) {
  for (std::size_t t = 0; t < kPoints; ++t)
    ASSERT_NEAR(courses().regionMeans[0][t], courses().reference[t], 1e-12);
  EXPECT_NE(firstVoxelOf(0), courses().reference);
}

TEST(CourseSimulator, ReferenceFollowsItsPastAndTheMeansOfTheDrivingRegions) {
  std::vector<Course> x = {past(courses().reference)};
  for (std::size_t k = 1; k < 9; ++k) x.push_back(past(courses().regionMeans[k]));
  const least_squares::Fit found = fit(x, present(courses().reference));
  EXPECT_NEAR(found.weights[0], courses().model.reference().autoregression, kTolerance);
  for (std::size_t k = 1; k < 9; ++k)
    EXPECT_NEAR(found.weights[k], courses().model.regions[k].drive, 2 * kTolerance) << k;
  EXPECT_NEAR(found.errorVariance, 1, 2 * kTolerance);
}

TEST(CourseSimulator, VoxelsFollowTheirOwnPastAndTheReference) {
  for (std::size_t k = 1; k < 9; ++k) {
    const least_squares::Fit found =
        fit({past(firstVoxelOf(k)), past(courses().reference)}, present(firstVoxelOf(k)));
    EXPECT_NEAR(found.weights[0], courses().model.regions[k].autoregression, kTolerance) << k;
    EXPECT_NEAR(found.weights[1], courses().model.regions[k].follow, kTolerance) << k;
    EXPECT_NEAR(found.errorVariance, 1, 2 * kTolerance) << k;
  }
}

TEST(CourseSimulator, VoxelsOutsideAllRegionsKnowOnlyTheirOwnPast) {
  const Course& voxel = courses().voxels[0];
  const least_squares::Fit found = fit({past(voxel), past(courses().reference)}, present(voxel));
  EXPECT_NEAR(found.weights[0], simulation::kNoiseAutoregression, kTolerance);
  EXPECT_NEAR(found.weights[1], 0, kTolerance);
}

// Geweke's measures from least-squares residuals against their closed form.
TEST(CourseSimulator, MeasuresOfEveryRegionAreTheExpectedOnes) {
  const std::vector<std::size_t> voxels(9, kVoxelsPerRegion);
  const Course& r = courses().reference;
  for (std::size_t k = 1; k < 9; ++k) {
    const Course& v = firstVoxelOf(k);
    const auto expected = simulation::expectedMeasures(courses().model, voxels, k);
    const double ownR = fit({past(r)}, present(r)).errorVariance,
                 ownV = fit({past(v)}, present(v)).errorVariance;
    const double jointR = fit({past(r), past(v)}, present(r)).errorVariance;
    const double jointV = fit({past(r), past(v)}, present(v)).errorVariance;
    const double givenR = fit({past(r), past(v), present(r)}, present(v)).errorVariance;
    EXPECT_NEAR(std::log(ownV / jointV), expected.ref2vox, kTolerance) << k;
    EXPECT_NEAR(std::log(ownR / jointR), expected.vox2ref, kTolerance) << k;
    EXPECT_NEAR(std::log(jointV / givenR), expected.inst, kTolerance) << k;
  }
}

// A second lag adds nothing: with the reference every voxel is a process of order 1.
TEST(CourseSimulator, PairsHaveNoSecondLag) {
  const auto olderThanPast = [](const Course& c) { return Course(c.begin(), c.end() - 2); };
  const auto shorterPast = [](const Course& c) { return Course(c.begin() + 1, c.end() - 1); };
  const auto shorterPresent = [](const Course& c) { return Course(c.begin() + 2, c.end()); };
  const Course& r = courses().reference;
  for (std::size_t k = 1; k < 9; ++k) {
    const Course& v = firstVoxelOf(k);
    const std::vector<Course> x = {shorterPast(r), shorterPast(v), olderThanPast(r), olderThanPast(v)};
    const least_squares::Fit toV = fit(x, shorterPresent(v)), toR = fit(x, shorterPresent(r));
    for (const std::size_t lagTwo : {2U, 3U}) {
      EXPECT_NEAR(toV.weights[lagTwo], 0, 1.5 * kTolerance) << k;
      EXPECT_NEAR(toR.weights[lagTwo], 0, 1.5 * kTolerance) << k;
    }
  }
}

}  // namespace
