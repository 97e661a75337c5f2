#include "tav/map_source.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "tav/tail_thresholds.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Raw measures in blocks of these sizes, with zeros and NaN among them.
class Blocks {
 public:
  explicit Blocks(const std::vector<std::size_t>& sizes) {
    std::mt19937 random(4);
    std::exponential_distribution<float> measure(5.0F);
    std::uniform_int_distribution<int> kind(0, 50);
    for (const std::size_t size : sizes) {
      auto& planes = planes_.emplace_back();
      for (auto& plane : planes) {
        for (std::size_t i = 0; i < size; ++i) {
          const int k = kind(random);
          plane.push_back(k == 0 ? 0.0F : k == 1 ? kNan : measure(random));
        }
      }
    }
    for (const auto& [x, y, z] : planes_) raw_.push_back({{x.data(), y.data(), z.data()}, x.size()});
  }
  [[nodiscard]] const std::vector<tav::RawValues>& raw() const { return raw_; }

  // One map of all blocks, computed at once.
  [[nodiscard]] std::vector<float> map(tav::MapType type) const {
    std::vector<float> values;
    for (const tav::RawValues& raw : raw_) {
      std::vector<float> part(raw.size);
      tav::computeMapValues(type, raw, {}, part.data());
      values.insert(values.end(), part.begin(), part.end());
    }
    return values;
  }

 private:
  std::vector<std::array<std::vector<float>, tav::kNrOfMeasures>> planes_;
  std::vector<tav::RawValues> raw_;
};

// Bit for bit, since NaN equals nothing.
std::vector<std::uint32_t> bitsOf(const std::vector<float>& values) {
  std::vector<std::uint32_t> bits;
  for (const float value : values) bits.push_back(std::bit_cast<std::uint32_t>(value));
  return bits;
}

class ComputedMapOf : public ::testing::TestWithParam<tav::MapType> {
 protected:
  const Blocks blocks_{{3000, 0, 1, 2048, 5001}};
  const tav::TAV_Pars pars_;
  const tav::ComputedMap computed_{GetParam(), blocks_.raw(), pars_};
};

TEST_P(ComputedMapOf, GivesItsValuesPieceAfterPiece) {
  std::vector<float> values;
  computed_.forEachPiece([&](tav::MapSource::Piece piece) {
    for (const float value : piece) values.push_back(value * computed_.scale());
  });
  EXPECT_EQ(bitsOf(values), bitsOf(blocks_.map(GetParam())));
  EXPECT_EQ(computed_.size(), values.size());
}

TEST_P(ComputedMapOf, GivesEvenlySpreadValues) {
  const std::vector<float> map = blocks_.map(GetParam());
  for (const std::size_t stride : {1U, 7U, 4000U}) {
    std::vector<float> expected;
    for (std::size_t i = 0; i < map.size(); i += stride) expected.push_back(map[i]);
    EXPECT_EQ(bitsOf(computed_.every(stride)), bitsOf(expected)) << stride;
  }
}

TEST_P(ComputedMapOf, HasTheThresholdsOfTheStoredMap) {
  const Blocks observed({4000});
  const std::vector<float> map = observed.map(GetParam()), null = blocks_.map(GetParam());
  const tav::StoredMap stored({map}), storedNull({null});
  for (const auto rule : {tav::ThresholdRule::kWalk, tav::ThresholdRule::kStepUp}) {
    const auto found = tav::searchTailThresholds(rule, {0.1F, 0.9F}, stored, computed_, 1);
    const auto expected = tav::searchTailThresholds(rule, {0.1F, 0.9F}, stored, storedNull, 1);
    ASSERT_EQ(found.size(), 2U);
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_EQ(found[i].threshold, expected[i].threshold);
      EXPECT_EQ(found[i].nrPassing, expected[i].nrPassing);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Types, ComputedMapOf,
                         ::testing::Values(tav::REF2VOX, tav::VOX2REF, tav::INST, tav::DTAV, tav::DTAV_IT,
                                           tav::DTAV_RC));

}  // namespace
