#include "tav/fdr_thresholds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Map {
  explicit Map(const std::vector<float>& values) : array(1, 1, static_cast<unsigned>(values.size())) {
    std::copy(values.begin(), values.end(), array.elements());
  }
  Array3D<float> array;
};

std::vector<float> thresholdsOf(const std::vector<float>& qs, const std::vector<float>& observed,
                                const std::vector<float>& null, int cv) {
  std::vector<float> thresholds(qs.size(), 0.0F);
  std::ostringstream err;
  EXPECT_TRUE(tav::bstrTwoSideFDR(qs, Map(observed).array, Map(null).array, cv, thresholds, err));
  EXPECT_EQ(err.str(), "");
  return thresholds;
}

std::vector<tav::MapThreshold> search(tav::ThresholdRule rule, const std::vector<float>& qs,
                                      const std::vector<float>& observed, const std::vector<float>& null,
                                      int cv) {
  std::vector<float> a, b;
  tav::appendMagnitudes(observed, a);
  tav::appendMagnitudes(null, b);
  return tav::searchThresholds(rule, qs, a, b, cv);
}

// The walk as it is described, one q at a time, with counts by exhaustive comparison.
// "Greater" orders NaN below every number.
bool greater(float a, float b) {
  return std::isnan(b) ? !std::isnan(a) : a > b;
}

std::vector<float> magnitudesDescending(const std::vector<float>& values) {
  std::vector<float> result;
  for (const float value : values) {
    if (!(value == 0.0F)) result.push_back(std::fabs(value));
  }
  std::stable_sort(result.begin(), result.end(), greater);
  return result;
}

double constantOf(int cv, std::size_t m) {
  return cv == 2 ? static_cast<double>(std::log(static_cast<float>(m)) + 0.5772F) : 1.0;
}

float literalWalk(float q, const std::vector<float>& observed, const std::vector<float>& null, int cv) {
  const auto a = magnitudesDescending(observed);
  const auto b = magnitudesDescending(null);
  if (a.empty() || b.empty()) return 0.0F;
  const double c = constantOf(cv, a.size());
  for (std::size_t r = 1; r <= a.size(); ++r) {
    auto count = static_cast<std::size_t>(
        std::count_if(b.begin(), b.end(), [&](float v) { return greater(v, a[r - 1]); }));
    if (count == b.size()) --count;  // the walk's index stops at the smallest one
    const double p = static_cast<double>(count) / static_cast<double>(b.size());
    const double bound =
        static_cast<double>(r) / static_cast<double>(a.size()) * (static_cast<double>(q) / c);
    if (p > bound) {
      const float threshold = a[r == 1 ? 0 : r - 2];
      return std::isnan(threshold) ? 0.0F : threshold;
    }
  }
  return 0.0F;
}

float literalStepUp(float q, const std::vector<float>& observed, const std::vector<float>& null, int cv) {
  const auto a = magnitudesDescending(observed);
  const auto b = magnitudesDescending(null);
  const double c = constantOf(cv, a.size());
  float threshold = kInfinity;
  for (const float t : a) {
    if (std::isnan(t)) continue;
    const auto r = std::count_if(a.begin(), a.end(), [&](float v) { return v >= t; });
    const auto count = std::count_if(b.begin(), b.end(), [&](float v) { return v >= t; });
    const double p = static_cast<double>(1 + count) / static_cast<double>(b.size() + 1);
    if (p <= static_cast<double>(r) / static_cast<double>(a.size()) * (static_cast<double>(q) / c))
      threshold = std::min(threshold, t);
  }
  return threshold;
}

// Maps with many ties, zeros, NaN and infinities.
class RandomCase {
 public:
  explicit RandomCase(unsigned seed) : generator_(seed) {
    observed = values(40, seed % 3 == 0 ? 2.0F : 0.5F);
    null = values(60, 0.0F);
    const std::vector<float> all = {0.001F, 0.01F, 0.05F, 0.1F, 0.3F, 0.7F, 0.99F};
    for (int i = 0; i < 4; ++i) qs.push_back(all[generator_() % all.size()]);
    cv = 1 + static_cast<int>(generator_() % 2);
  }
  std::vector<float> observed, null, qs;
  int cv;

 private:
  std::vector<float> values(unsigned most, float shift) {
    std::vector<float> result(1 + generator_() % most);
    for (float& value : result) {
      const auto kind = generator_() % 20;
      std::normal_distribution<float> normal(shift);
      value = kind == 0 ? kNaN : kind <= 2 ? 0.0F : kind == 3 ? kInfinity : normal(generator_);
      if (kind % 2 == 0) value = std::round(value * 4.0F) / 4.0F;  // ties
    }
    return result;
  }
  std::mt19937 generator_;
};

}  // namespace

TEST(FdrThresholds, EqualALiteralWalkOnRandomMaps) {
  for (unsigned seed = 0; seed < 6000; ++seed) {
    const RandomCase random(seed);
    auto qs = random.qs;
    const auto thresholds = thresholdsOf(qs, random.observed, random.null, random.cv);
    std::sort(qs.begin(), qs.end());
    for (std::size_t k = 0; k < qs.size(); ++k) {
      ASSERT_EQ(thresholds[k], literalWalk(qs[k], random.observed, random.null, random.cv))
          << "seed " << seed;
    }
  }
}

TEST(FdrThresholds, StepUpEqualsALiteralSearchOnRandomMaps) {
  for (unsigned seed = 0; seed < 6000; ++seed) {
    const RandomCase random(seed);
    for (const auto& result :
         search(tav::ThresholdRule::kStepUp, random.qs, random.observed, random.null, random.cv)) {
      ASSERT_EQ(result.threshold, literalStepUp(result.q, random.observed, random.null, random.cv))
          << "seed " << seed;
    }
  }
}

TEST(FdrThresholds, CountWhatPassesOnRandomMaps) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    const RandomCase random(seed);
    for (const auto rule : {tav::ThresholdRule::kWalk, tav::ThresholdRule::kStepUp}) {
      for (const auto& result : search(rule, random.qs, random.observed, random.null, random.cv)) {
        const auto reach = std::count_if(random.observed.begin(), random.observed.end(), [&](float v) {
          return v != 0.0F && std::fabs(v) >= result.threshold;
        });
        if (result.anyPasses()) {
          ASSERT_EQ(result.nrPassing, static_cast<std::size_t>(reach)) << "seed " << seed;
        }
      }
    }
  }
}

TEST(FdrThresholds, AnEmptyMapFails) {
  std::vector<float> thresholds = {7.0F};
  std::ostringstream err;
  const Array3D<float> none(0, 0, 0);
  EXPECT_FALSE(tav::bstrTwoSideFDR({0.05F}, none, none, 1, thresholds, err));
  EXPECT_EQ(thresholds[0], 7.0F);
  EXPECT_EQ(err.str(), "");
}

TEST(FdrThresholds, AMapOfZerosLeaves0) {
  EXPECT_EQ(thresholdsOf({0.05F, 0.1F}, {0.0F, -0.0F, 0.0F}, {1.0F, 2.0F}, 1),
            (std::vector<float>{0.0F, 0.0F}));
}

TEST(FdrThresholds, ViolationAtTheFirstCandidateLeavesTheLargest) {
  const std::vector<float> observed = {1.0F, 5.0F, 3.0F};
  EXPECT_EQ(thresholdsOf({0.05F}, observed, {6.0F, 1.0F, 1.0F}, 1), (std::vector<float>{5.0F}));
  const auto results = search(tav::ThresholdRule::kWalk, {0.05F}, observed, {6.0F, 1.0F, 1.0F}, 1);
  EXPECT_FALSE(results[0].anyPasses());
}

TEST(FdrThresholds, WalkStopsAtTheLastCandidateThatHolds) {
  const std::vector<float> observed = {10.0F, 9.0F, 8.0F, 2.0F, 1.0F};
  const auto results = search(tav::ThresholdRule::kWalk, {0.3F}, observed, {5.0F, 4.0F, 3.0F, 0.5F}, 1);
  EXPECT_EQ(results[0].threshold, 8.0F);
  EXPECT_EQ(results[0].nrPassing, 3U);
}

TEST(FdrThresholds, NoViolationLeaves0AndEverythingPasses) {
  const auto results = search(tav::ThresholdRule::kWalk, {0.05F}, {3.0F, 2.0F, 0.0F}, {0.1F, 0.2F}, 1);
  EXPECT_EQ(results[0].threshold, 0.0F);
  EXPECT_EQ(results[0].nrPassing, 2U);
}

TEST(FdrThresholds, OneNaNInTheNullMapDoesNotMakeEverythingSignificant) {
  const std::vector<float> observed = {0.5F, 0.4F, 0.3F};
  const auto with = search(tav::ThresholdRule::kWalk, {0.05F}, observed, {1.0F, kNaN, 2.0F, 3.0F}, 1);
  EXPECT_EQ(with[0].threshold, 0.5F);
  EXPECT_FALSE(with[0].anyPasses());
}

TEST(FdrThresholds, ComeByAscendingQ) {
  const std::vector<float> observed = {10.0F, 9.0F, 8.0F, 2.0F, 1.0F};
  const std::vector<float> null = {5.0F, 4.0F, 0.5F, 0.5F};
  const auto ascending = thresholdsOf({0.01F, 0.9F}, observed, null, 1);
  EXPECT_EQ(thresholdsOf({0.9F, 0.01F}, observed, null, 1), ascending);
  EXPECT_GT(ascending[0], ascending[1]);
}

TEST(FdrThresholds, DoNotDependOnSigns) {
  const RandomCase random(17);
  auto negated = random.observed;
  for (float& value : negated) value = -value;
  EXPECT_EQ(thresholdsOf({0.05F, 0.3F}, random.observed, random.null, 2),
            thresholdsOf({0.05F, 0.3F}, negated, random.null, 2));
}

TEST(FdrThresholds, AnUnknownConstantIsReportedAndCountsAs1) {
  const std::vector<float> observed = {10.0F, 9.0F, 4.5F};
  const std::vector<float> null = {5.0F, 4.0F, 3.0F, 0.5F};
  std::vector<float> thresholds(1);
  std::ostringstream err;
  EXPECT_TRUE(tav::bstrTwoSideFDR({0.3F}, Map(observed).array, Map(null).array, 3, thresholds, err));
  EXPECT_EQ(err.str(), "Unknown value for cVconst: 3 , only 1 or 2 allowed");
  // p = 1/4 at the last candidate: within 0.3, not within 0.3 / (ln 3 + 0.5772).
  EXPECT_EQ(thresholds, (std::vector<float>{0.0F}));
  EXPECT_EQ(thresholdsOf({0.3F}, observed, null, 2), (std::vector<float>{9.0F}));
}

// p and bound are the same number: 1/4 at rank 1 of 2 for q = 1/2. All of it is exact in binary.
TEST(FdrThresholds, ACandidateThatMeetsItsBoundExactlyPasses) {
  const auto stepUp = search(tav::ThresholdRule::kStepUp, {0.5F}, {10.0F, 1.0F}, {2.0F, 3.0F, 4.0F}, 1);
  EXPECT_EQ(stepUp[0].threshold, 10.0F);
  EXPECT_EQ(stepUp[0].nrPassing, 1U);
  const auto walk = search(tav::ThresholdRule::kWalk, {0.5F}, {10.0F, 9.0F}, {20.0F, 1.0F, 2.0F, 3.0F}, 1);
  EXPECT_EQ(walk[0].threshold, 0.0F);
  EXPECT_EQ(walk[0].nrPassing, 2U);
}

// A null magnitude equal to a candidate counts against it in the step-up rule, not in the walk.
TEST(FdrThresholds, ANullMagnitudeEqualToACandidateCountsInTheStepUpRuleAlone) {
  const auto stepUp = search(tav::ThresholdRule::kStepUp, {0.5F}, {10.0F, 1.0F}, {2.0F, 3.0F, 10.0F}, 1);
  EXPECT_FALSE(stepUp[0].anyPasses());
  const auto walk = search(tav::ThresholdRule::kWalk, {0.2F}, {10.0F, 9.0F}, {10.0F, 1.0F, 2.0F, 3.0F}, 1);
  EXPECT_EQ(walk[0].threshold, 10.0F);
  EXPECT_EQ(walk[0].nrPassing, 1U);
}

TEST(FdrThresholds, WithoutNullValuesNothingPasses) {
  for (const auto rule : {tav::ThresholdRule::kWalk, tav::ThresholdRule::kStepUp}) {
    const auto results = search(rule, {0.05F}, {1.0F, 2.0F}, {0.0F, 0.0F}, 1);
    EXPECT_FALSE(results[0].anyPasses());
    EXPECT_EQ(results[0].threshold, rule == tav::ThresholdRule::kWalk ? 0.0F : kInfinity);
  }
}

TEST(FdrThresholds, StepUpWithoutSurvivorsLetsNothingPass) {
  const auto results = search(tav::ThresholdRule::kStepUp, {0.05F}, {0.1F, 0.2F}, {1.0F, 2.0F, 3.0F}, 1);
  EXPECT_EQ(results[0].threshold, kInfinity);
  EXPECT_FALSE(results[0].anyPasses());
}

TEST(FdrThresholds, StepUpReachesPastAnEarlyViolation) {
  std::vector<float> null(99, 0.1F);
  null.push_back(50.0F);
  const std::vector<float> observed(20, 10.0F);
  const auto results = search(tav::ThresholdRule::kStepUp, {0.05F}, observed, null, 1);
  EXPECT_EQ(results[0].threshold, 10.0F) << "p = 2/101 at rank 20 of 20";
  EXPECT_EQ(results[0].nrPassing, 20U);
}
