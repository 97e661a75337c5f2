// The selection of large magnitudes by every kernel, against a loop over the values.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/kernel/every_kernel.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kDenormal = std::numeric_limits<float>::denorm_min();

struct Selection {
  std::vector<float> magnitudes;
  std::size_t zeros = 0, nans = 0;
  bool operator==(const Selection&) const = default;
};

Selection expected(const std::vector<float>& values, float scale, float cut) {
  Selection selection;
  for (const float unscaled : values) {
    const float value = unscaled * scale;
    if (value == 0.0F) ++selection.zeros;
    if (std::isnan(value)) ++selection.nans;
    if (std::fabs(value) >= cut) selection.magnitudes.push_back(std::fabs(value));
  }
  return selection;
}

using SelectTail = EveryKernel;

Selection selectedBy(const tav::kernel::Kernel& kernel, const std::vector<float>& values, float scale,
                     float cut) {
  // Exactly as large as it must be: the sanitizers see a write behind it.
  Selection selection{std::vector<float>(values.size()), 0, 0};
  const auto counts =
      kernel.selectTail(values.data(), values.size(), scale, cut, selection.magnitudes.data());
  selection.magnitudes.resize(counts.selected);
  selection.zeros = counts.zeros;
  selection.nans = counts.nans;
  return selection;
}

TEST_P(SelectTail, TakesMagnitudesFromTheCutOn) {
  const std::vector<float> values = {0.0F, -0.0F,     1.0F,      -2.0F, kNan,       2.0F,
                                     1.9F, kInfinity, kDenormal, -kNan, -kInfinity, -1.0F};
  for (const float scale : {1.0F, 100.0F, 0.3F, -2.0F, 1e-3F}) {
    for (const float cut : {2.0F, 190.0F, kDenormal, kInfinity})
      EXPECT_EQ(selectedBy(kernel(), values, scale, cut), expected(values, scale, cut))
          << scale << ' ' << cut;
  }
}

TEST_P(SelectTail, AgreesForEveryLength) {
  std::mt19937 random(3);
  std::uniform_int_distribution<int> kind(0, 20);
  std::normal_distribution<float> normal;
  for (std::size_t size = 0; size < 200; ++size) {
    std::vector<float> values(size);
    for (float& value : values) {
      const int k = kind(random);
      value = k == 0 ? 0.0F : k == 1 ? kNan : k == 2 ? kInfinity : normal(random);
    }
    EXPECT_EQ(selectedBy(kernel(), values, 10.0F, 15.0F), expected(values, 10.0F, 15.0F))
        << size << " values";
  }
}

INSTANTIATE_KERNELS(SelectTail);

}  // namespace
