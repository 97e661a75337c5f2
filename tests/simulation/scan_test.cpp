#include "simulation/scan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using simulation::Artefacts;
using simulation::Head;
using simulation::NoiseStream;

constexpr int kVolumes = 200;

// The brain's voxels of every volume of a scan: [volume][voxel].
struct Scanned {
  explicit Scanned(const Artefacts& artefacts, int volumes = kVolumes) {
    NoiseStream random(3, 0, 0);
    simulation::HeadOptions options;
    options.grid = {12, 12, 12};
    const auto model = simulation::plantedModel(1);
    head = simulation::makeHead(options, model, random);
    NoiseStream noise(4, 0, 1);
    simulation::Scan scan(head, model, artefacts, volumes, noise);
    for (int volume = 0; volume < volumes; ++volume) {
      const std::vector<float>& values = scan.nextVolume();
      auto& brain = courses.emplace_back();
      for (const std::size_t index : head.brain) brain.push_back(static_cast<double>(values[index]));
    }
  }
  Head head;
  std::vector<std::vector<double>> courses;
};

// The drift turns about the middle of the run: a voxel's mean does not depend on its slope.
TEST(Scan, DriftsLeaveTheMeanAlone) {
  const Scanned scan({});
  double product = 0, slopes = 0;
  for (std::size_t v = 0; v < scan.head.brain.size(); ++v) {
    double mean = 0, slope = 0, squares = 0;
    for (int t = 0; t < kVolumes; ++t) {
      const double value = scan.courses[static_cast<std::size_t>(t)][v], time = t / (kVolumes - 1.0) - 0.5;
      mean += value / kVolumes;
      slope += value * time;
      squares += time * time;
    }
    slope /= squares;
    product += slope * (mean - static_cast<double>(scan.head.base[v]));
    slopes += slope * slope;
  }
  EXPECT_NEAR(product / slopes, 0, 0.1);  // 0.5 when it turned about the first volume
}

// Courses so large that nothing else matters: what a voxel shows is its weight.
TEST(Scan, EveryVoxelWeighsEveryArtefactItsOwnWay) {
  Artefacts artefacts;
  artefacts.courses = {{0, 1e6, 0}, {0, 0, 1e6}};
  const Scanned scan(artefacts, 3);
  std::set<long> weights;
  for (std::size_t v = 0; v < scan.head.brain.size(); ++v) {
    for (const std::size_t volume : {1U, 2U}) {
      const double weight = scan.courses[volume][v] / (simulation::kAmplitude * 1e6);
      EXPECT_TRUE(weight > 0.49 && weight < 1.51) << weight;
      weights.insert(std::lround(weight * 1e5));
    }
  }
  EXPECT_GT(weights.size(), 2 * scan.head.brain.size() * 95 / 100) << "hardly any two are equal";
}

TEST(Scan, SaturationScalesTheFirstVolumesAlone) {
  Artefacts artefacts;
  artefacts.saturation = {1.5, 1.25};
  const Scanned saturated(artefacts, 3), steady({}, 3);
  for (std::size_t v = 0; v < steady.head.brain.size(); ++v) {
    const double base = static_cast<double>(steady.head.base[v]);
    EXPECT_NEAR(saturated.courses[0][v] - steady.courses[0][v], 0.5 * base, 0.01 * base);
    EXPECT_NEAR(saturated.courses[1][v] - steady.courses[1][v], 0.25 * base, 0.01 * base);
    EXPECT_EQ(saturated.courses[2][v], steady.courses[2][v]);
  }
}

}  // namespace
