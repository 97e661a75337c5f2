// The promise of the thresholds on small simulated data sets, through all that `tavmap run` does: a
// share of false runs, or of false voxels, of at most q, up to two standard errors. The full table
// is made by calibration_table.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/calibration/chain_run.h"
#include "tests/calibration/rates.h"

namespace calibration {
namespace {

constexpr int kRuns = 100;
constexpr double kQ = 0.05;

DataSetting nullData() {
  DataSetting setting;
  setting.across = 10;
  setting.volumes = 120;
  return setting;
}

DataSetting drivenData() {
  DataSetting setting = nullData();
  setting.drivenShare = 0.1;
  setting.coupling = 0.6;
  return setting;
}

Analysis analysisOf(const std::string& method, int order) {
  Analysis analysis;
  analysis.method = method;
  analysis.order = order;
  analysis.qs = {kQ};
  return analysis;
}

// For the run as one interval and as four. inReference: voxels of the reference that passed, over
// all runs.
struct Measured {
  std::vector<Rates> rates;
  int inReference = 0;
};

Measured measure(const DataSetting& setting, const Analysis& analysis, unsigned firstSeed) {
  Measured measured{std::vector<Rates>(analysis.intervals.size()), 0};
  for (unsigned run = 0; run < kRuns; ++run) {
    const std::vector<Discoveries> found = analyse(SimulatedData(setting, firstSeed + run), analysis);
    EXPECT_EQ(found.size(), measured.rates.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_EQ(found[i].computed, setting.voxels());
      measured.rates.at(i).add(found[i]);
      measured.inReference += found[i].inReference;
    }
  }
  return measured;
}

double limitOnNullData() {
  return kQ + 2 * std::sqrt(kQ * (1 - kQ) / kRuns);
}
double limitOf(const Mean& falseShare) {
  return kQ + 2 * falseShare.standardError();
}

// Into the test's report and its output, whatever is asserted.
void report(const std::string& what, const std::vector<Rates>& rates) {
  for (std::size_t i = 0; i < rates.size(); ++i) {
    const Rates& rate = rates[i];
    const std::string name = what + (i == 0 ? "_one_interval" : "_four_intervals");
    ::testing::Test::RecordProperty(name + "_any", std::to_string(rate.anyPasses.mean()));
    ::testing::Test::RecordProperty(name + "_fdr", std::to_string(rate.falseShare.mean()));
    ::testing::Test::RecordProperty(name + "_power", std::to_string(rate.power.mean()));
    std::printf("%s: any %.2f, FDR %.4f +- %.4f (%.4f +- %.4f with the reference), power %.3f\n",
                name.c_str(), rate.anyPasses.mean(), rate.falseShare.mean(), rate.falseShare.standardError(),
                rate.falseShareOfAll.mean(), rate.falseShareOfAll.standardError(), rate.power.mean());
  }
}

class CalibratedThresholds : public ::testing::TestWithParam<int> {
 protected:
  [[nodiscard]] Analysis analysis() const { return analysisOf("calibrated", GetParam()); }
};

TEST_P(CalibratedThresholds, LetAVoxelPassInAtMostAShareQOfNullRuns) {
  const Measured measured = measure(nullData(), analysis(), 1000);
  report("null", measured.rates);
  for (const Rates& rate : measured.rates) EXPECT_LE(rate.anyPasses.mean(), limitOnNullData());
}

TEST_P(CalibratedThresholds, HoldTheFalseDiscoveryRateAndFindDrivenVoxels) {
  const Measured measured = measure(drivenData(), analysis(), 2000);
  report("driven", measured.rates);
  for (const Rates& rate : measured.rates) {
    EXPECT_LE(rate.falseShare.mean(), limitOf(rate.falseShare));
    EXPECT_GT(rate.power.mean(), 0.8);
  }
}

TEST_P(CalibratedThresholds, HoldOutsideAReferenceThatLiesAmongTheVoxels) {
  DataSetting setting = nullData();
  setting.referenceInside = true;
  const Measured measured = measure(setting, analysis(), 3000);
  report("inside", measured.rates);
  for (const Rates& rate : measured.rates) EXPECT_LE(rate.anyPasses.mean(), limitOnNullData());
}

INSTANTIATE_TEST_SUITE_P(Order, CalibratedThresholds, ::testing::Values(1, 2));

TEST(PluginThresholds, FindDrivenVoxels) {
  const Measured measured = measure(drivenData(), analysisOf("plugin", 1), 2000);
  report("driven", measured.rates);
  for (const Rates& rate : measured.rates) EXPECT_GT(rate.power.mean(), 0.8);
}

TEST(PluginThresholds, LetAVoxelPassInMoreThanAShareQOfNullRuns) {
  const Measured measured = measure(nullData(), analysisOf("plugin", 1), 1000);
  report("null", measured.rates);
  for (const Rates& rate : measured.rates) EXPECT_GT(rate.anyPasses.mean(), limitOnNullData());
}

}  // namespace
}  // namespace calibration
