#include "report/embedded_volumes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace report;

std::size_t codeAt(const CodedValues& coded, std::size_t i) {
  if (coded.bits == 8) return coded.bytes[i];
  return coded.bytes[2 * i] + 256U * coded.bytes[2 * i + 1];
}

double valueAt(const CodedValues& coded, std::size_t i) {
  return coded.offset + coded.step * static_cast<double>(codeAt(coded, i));
}

TEST(CodedValues, AreWithinHalfAStep) {
  std::vector<float> values;
  for (int i = 0; i < 1000; ++i) values.push_back(std::sin(static_cast<float>(i)) * 40.0F + 3.0F);
  for (const int bits : {8, 16}) {
    const CodedValues result = coded(values, bits);
    for (std::size_t i = 0; i < values.size(); ++i)
      EXPECT_NEAR(valueAt(result, i), values[i], result.step * 0.5001) << bits;
    EXPECT_LT(result.step, bits == 8 ? 0.4 : 0.002);
  }
}

TEST(CodedValues, HaveNoCodeForWhatIsNotFinite) {
  const CodedValues result = coded(std::vector<float>{1, std::numeric_limits<float>::quiet_NaN(),
                                                      std::numeric_limits<float>::infinity(), 2},
                                   8);
  EXPECT_EQ(codeAt(result, 1), 0U);
  EXPECT_EQ(codeAt(result, 2), 0U);
  EXPECT_EQ(codeAt(result, 0), 1U);
  EXPECT_EQ(codeAt(result, 3), 255U);
}

TEST(CodedValues, OfOneValueAreThatValue) {
  const CodedValues result = coded(std::vector<float>{7, 7}, 16);
  EXPECT_DOUBLE_EQ(valueAt(result, 1), 7);
  EXPECT_EQ(coded(std::vector<float>{}, 8).bytes.size(), 0U);
}

TEST(CodedValues, FromZeroCountFromTheCodeOne) {
  const CodedValues result = codedFromZero(std::vector<float>{2, 5}, 8);
  EXPECT_DOUBLE_EQ(result.offset + result.step, 0);
  EXPECT_NEAR(valueAt(result, 0), 2, result.step / 2);
}

TEST(VolumeElement, IsAScriptThatIsNotRun) {
  const std::string html = volumeElement("vol-1", std::vector<std::uint8_t>{1, 2, 3});
  EXPECT_TRUE(html.starts_with("<script type=\"text/plain\" id=\"vol-1\">"));
}

TEST(EmbeddingPlan, GrowsCoarserWithTheNumberOfMaps) {
  constexpr std::size_t kLimit = 4'000'000, kVoxels = 45'000;
  const auto plan = [](std::size_t views) { return embeddingPlan(views, kVoxels, kLimit); };
  EXPECT_EQ(plan(1).bits, 16);
  EXPECT_TRUE(plan(1).withP);
  EXPECT_EQ(plan(8).bits, 8);
  EXPECT_TRUE(plan(8).withP);
  EXPECT_FALSE(plan(15).withP);
  EXPECT_EQ(plan(15).strongestShare, 1);
  EXPECT_EQ(plan(40).strongestShare, 0.1);
  EXPECT_EQ(plan(80).strongestShare, 0.04);
  EXPECT_TRUE(plan(80).withMaps);
  EXPECT_FALSE(plan(500).withMaps);
}

TEST(Strongest, IsByMagnitude) {
  std::vector<float> values = {std::numeric_limits<float>::quiet_NaN()};
  for (int i = 0; i <= 100; ++i) values.push_back(static_cast<float>(i % 2 == 0 ? i : -i));
  EXPECT_EQ(strongest(values, 0.1), 90);
  EXPECT_EQ(strongest(values, 0.04), 96);
  EXPECT_EQ(strongest(std::vector<float>{}, 0.1), 0);
}

}  // namespace
