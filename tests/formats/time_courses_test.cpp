#include "formats/time_courses.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

using formats::DataType;
using formats::SeriesSlab;
using formats::StoredForm;

template <typename T>
SeriesSlab slabOf(const std::vector<T>& series, std::size_t voxels) {
  return {reinterpret_cast<const char*>(series.data()), voxels * sizeof(T)};
}

template <typename T>
std::vector<T> series(std::size_t voxels, std::size_t volumes) {
  std::vector<T> values(voxels * volumes);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<T>(i * 7919 % 30011);
  return values;
}

// Sizes around the edges of a tile of 16 volumes by 64 voxels.
TEST(TimeCourses, TransposeEverySize) {
  for (const std::size_t voxels : {1U, 2U, 63U, 64U, 65U, 130U}) {
    for (const std::size_t volumes : {1U, 2U, 15U, 16U, 17U, 50U}) {
      const auto stored = series<std::int16_t>(voxels, volumes);
      const StoredForm form{DataType::kInt16, false, {}};
      std::vector<float> floats(stored.size());
      std::vector<std::uint16_t> words(stored.size());
      ASSERT_TRUE(toTimeCourses(form, slabOf(stored, voxels), 0, voxels, volumes, floats.data()));
      ASSERT_TRUE(toTimeCourses(form, slabOf(stored, voxels), 0, voxels, volumes, words.data()));
      for (std::size_t v = 0; v < voxels; ++v) {
        for (std::size_t t = 0; t < volumes; ++t) {
          ASSERT_EQ(floats[v * volumes + t], static_cast<float>(stored[t * voxels + v])) << v << ' ' << t;
          ASSERT_EQ(words[v * volumes + t], stored[t * voxels + v]) << v << ' ' << t;
        }
      }
    }
  }
}

TEST(TimeCourses, StartAtAnyVoxelOfTheSlab) {
  const auto stored = series<float>(100, 20);
  std::vector<float> out(70 * 20);
  ASSERT_TRUE(toTimeCourses({DataType::kFloat32, false, {}}, slabOf(stored, 100), 30, 70, 20, out.data()));
  EXPECT_EQ(out[0], stored[30]);
  EXPECT_EQ(out[69 * 20 + 19], stored[19 * 100 + 99]);
}

TEST(TimeCourses, ReadWhatIsNotAligned) {
  const auto stored = series<double>(10, 3);
  std::vector<char> bytes(1 + stored.size() * sizeof(double));
  std::memcpy(bytes.data() + 1, stored.data(), stored.size() * sizeof(double));
  std::vector<float> out(30);
  ASSERT_TRUE(
      toTimeCourses({DataType::kFloat64, false, {}}, SeriesSlab{bytes.data() + 1, 80}, 0, 10, 3, out.data()));
  EXPECT_EQ(out[29], static_cast<float>(stored[29]));
}

TEST(TimeCourses, ScaleAndSwapBytes) {
  std::vector<std::int32_t> stored{1, 256, -3, 70000};
  for (auto& value : stored) value = formats::swapBytes(value);
  std::vector<float> out(4);
  ASSERT_TRUE(toTimeCourses({DataType::kInt32, true, {0.5, 10}}, slabOf(stored, 2), 0, 2, 2, out.data()));
  EXPECT_EQ(out, (std::vector<float>{10.5F, 8.5F, 138, 35010}));
}

TEST(TimeCourses, RoundToSixteenBitsHalfToEven) {
  const std::vector<float> stored{0.5F, 1.5F, 2.5F, 65535.4F, 0, 64999.5F};
  std::vector<std::uint16_t> out(6);
  ASSERT_TRUE(toTimeCourses({DataType::kFloat32, false, {}}, slabOf(stored, 6), 0, 6, 1, out.data()));
  EXPECT_EQ(out, (std::vector<std::uint16_t>{0, 2, 2, 65535, 0, 65000}));
}

TEST(TimeCourses, TellValuesThatDoNotFitSixteenBits) {
  for (const float wrong : {-0.6F, 65535.6F, std::nanf(""), 1e30F, -1e30F}) {
    const std::vector<float> stored{5, wrong, 7};
    std::vector<std::uint16_t> out(3);
    EXPECT_FALSE(toTimeCourses({DataType::kFloat32, false, {}}, slabOf(stored, 3), 0, 3, 1, out.data()))
        << wrong;
    EXPECT_EQ(out, (std::vector<std::uint16_t>{5, 0, 7})) << wrong;
  }
  const std::vector<std::int16_t> negative{5, -1, 7};
  std::vector<std::uint16_t> out(3);
  EXPECT_FALSE(toTimeCourses({DataType::kInt16, false, {}}, slabOf(negative, 3), 0, 3, 1, out.data()));
  EXPECT_TRUE(toTimeCourses({DataType::kInt16, false, {1, 1}}, slabOf(negative, 3), 0, 3, 1, out.data()));
  EXPECT_EQ(out, (std::vector<std::uint16_t>{6, 0, 8}));
}

// Whole tiles of values around every place where rounding or fitting could go wrong, without and with
// scaling: the two take different ways.
TEST(TimeCourses, RoundEveryKindOfValueToSixteenBits) {
  std::vector<float> kinds;
  for (const double power : {0.0, 256.0, 65535.0, 65536.0, 8388608.0, 12582912.0, 16777216.0, 4294967296.0,
                             6755399441055744.0, 1e38}) {
    for (const double step : {-1.5, -1.0, -0.5, -0.25, 0.0, 0.5, 1.0, 2.5}) {
      kinds.push_back(static_cast<float>(power + step));
      kinds.push_back(static_cast<float>(-power - step));
    }
  }
  kinds.insert(kinds.end(), {std::nanf(""), INFINITY, -INFINITY, std::nextafter(65535.5F, 0.0F),
                             std::nextafter(-0.5F, -1.0F)});
  for (const float kind : kinds) {
    for (const double slope : {1.0, 0.5}) {
      const std::vector<float> stored(64, kind);
      const double rounded = std::nearbyint(slope * static_cast<double>(kind));
      const bool fits = rounded >= 0 && rounded <= 65535;
      std::vector<std::uint16_t> out(64);
      EXPECT_EQ(
          toTimeCourses({DataType::kFloat32, false, {slope, 0}}, slabOf(stored, 64), 0, 64, 1, out.data()),
          fits)
          << kind << ' ' << slope;
      EXPECT_EQ(out, std::vector<std::uint16_t>(64, static_cast<std::uint16_t>(fits ? rounded : 0)))
          << kind << ' ' << slope;
    }
  }
}

TEST(TimeCourses, ConvertARowOfAnyLength) {
  for (const std::size_t count : {1U, 63U, 64U, 129U}) {
    const auto stored = series<std::uint8_t>(count, 1);
    std::vector<float> out(count + 1, -1.0F);
    ASSERT_TRUE(formats::convertRow({DataType::kUint8, false, {2, 0}},
                                    reinterpret_cast<const char*>(stored.data()), count, out.data()));
    EXPECT_EQ(out[count - 1], 2.0F * static_cast<float>(stored[count - 1]));
    EXPECT_EQ(out[count], -1.0F);
  }
}

}  // namespace
