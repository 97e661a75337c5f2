// Maps do not depend on the unit of the data.
#include <gtest/gtest.h>

#include <cmath>

#include "formats/nifti.h"
#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;

class UnitOfData : public SmallStudyRun {
 protected:
  void SetUp() override {
    SmallStudyRun::SetUp();
    for (const char* name : {"bold1.nii.gz", "bold2.nii.gz"})
      originals_.push_back(readSeries(folder() / name));
  }
  // Every value of one kind of map, after a run with all values times the factor and plus the offset.
  std::vector<float> mapOf(double factor, const char* kind, float offset = 0) {
    for (std::size_t run = 0; run < originals_.size(); ++run) {
      Series series = originals_[run];
      for (float& value : series.values)
        value = static_cast<float>(static_cast<double>(value + offset) * factor);
      writeSeries(folder() / ("bold" + std::to_string(run + 1) + ".nii.gz"), series);
    }
    fs::remove_all(results());
    const ProgramResult result = run(write("null_draws = 2\nfwe_draws = 0"));
    EXPECT_EQ(result.exitCode, 0) << factor << " " << result.err;
    const std::string name =
        std::string("small_seed-A_contrast-whole") + kind + "_stat-effect_statmap.nii.gz";
    return formats::readImage((results() / name).string()).values;
  }
  static double largestDifference(const std::vector<float>& a, const std::vector<float>& b) {
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
      largest = std::max(largest, std::abs(static_cast<double>(a[i]) - static_cast<double>(b[i])));
    return largest;
  }
  std::vector<Series> originals_;
};

TEST_F(UnitOfData, TimesAPowerOfTwoGivesTheSameMaps) {
  const std::vector<float> usual = mapOf(1, "Ref2Vox");
  EXPECT_GT(*std::max_element(usual.begin(), usual.end()), 20);
  for (const int exponent : {-40, -20, -7, 3, 20, 40})
    EXPECT_EQ(mapOf(std::ldexp(1, exponent), "Ref2Vox"), usual) << exponent;
}

// The values are rounded as they are written.
TEST_F(UnitOfData, TimesAnythingGivesTheSameMapsWithinSinglePrecision) {
  const std::vector<float> usual = mapOf(1, "Ref2Vox");
  for (const double factor : {1e-12, 1e-6, 1e-3, 1e3, 1e6, 1e12})
    EXPECT_LT(largestDifference(mapOf(factor, "Ref2Vox"), usual), 1e-2) << factor;
}

// Around zero a constant is added in every unit.
TEST_F(UnitOfData, ValuesAroundZeroGiveTheSameMapsWithinSinglePrecision) {
  const std::vector<float> usual = mapOf(0.1, "Vox2Ref", -1000);
  for (const double factor : {1e-12, 1e-6, 1e-3, 1e6, 1e12})
    EXPECT_LT(largestDifference(mapOf(factor, "Vox2Ref", -1000), usual), 1e-2) << factor;
}

TEST_F(UnitOfData, ReferenceCoursesStayInTheUnitOfTheImage) {
  (void)mapOf(1e-6, "Ref2Vox");
  std::ifstream table(results() / "small_seed-A_desc-reference_timeseries.tsv");
  std::string row;
  std::getline(table, row);
  std::getline(table, row);
  EXPECT_NEAR(std::stod(row), 1e-3, 1e-4);
}

}  // namespace
