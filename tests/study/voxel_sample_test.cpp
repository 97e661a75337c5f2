#include "study/voxel_sample.h"

#include <gtest/gtest.h>

namespace {

using study::StatusCode;

std::vector<std::uint8_t> codesOf(std::size_t n, StatusCode code) {
  return std::vector<std::uint8_t>(n, static_cast<std::uint8_t>(code));
}

TEST(SampleOf, TakesAllOfFew) {
  std::vector<std::uint8_t> codes = codesOf(6, StatusCode::kOutsideMask);
  codes[1] = static_cast<std::uint8_t>(StatusCode::kIllDefined);
  codes[4] = static_cast<std::uint8_t>(StatusCode::kNotFinite);
  codes[5] = static_cast<std::uint8_t>(StatusCode::kComputed);
  EXPECT_EQ(study::sampleOf(codes, {StatusCode::kIllDefined, StatusCode::kNotFinite}),
            (std::vector<std::size_t>{1, 4}));
  EXPECT_TRUE(study::sampleOf(codes, {StatusCode::kInsideReference}).empty());
}

TEST(SampleOf, SpreadsFiftyOverMany) {
  const auto sample = study::sampleOf(codesOf(1000, StatusCode::kComputed), {StatusCode::kComputed});
  ASSERT_EQ(sample.size(), 50U);
  for (std::size_t i = 0; i < 50; ++i) EXPECT_EQ(sample[i], 20 * i);
}

}  // namespace
