#include "inference/descending_order.h"

#include <array>
#include <bit>

namespace inference {

namespace {

constexpr int kDigitBits = 11, kPasses = 3;
constexpr std::uint32_t kDigit = (1U << kDigitBits) - 1;
constexpr std::uint32_t kLargest = 0x7fffffffU;  // above the bits of every positive float

}  // namespace

float valueOf(const DescendingOrder::Entry& entry) {
  return std::bit_cast<float>(kLargest - entry.key);
}

void DescendingOrder::collect(std::span<const float> values, int sign) {
  entries_.resize(values.size());
  sorted_.resize(values.size());
  count_ = 0;
  const auto side = static_cast<float>(sign);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const float value = side * values[i];
    entries_[count_] = {kLargest - std::bit_cast<std::uint32_t>(value), static_cast<std::int32_t>(i)};
    count_ += value > 0 ? 1U : 0U;
  }
}

// A stable sort by one digit of the keys.
void DescendingOrder::pass(int shift) {
  std::array<std::uint32_t, kDigit + 1> begins{};
  for (std::size_t i = 0; i < count_; ++i) ++begins[(entries_[i].key >> shift) & kDigit];
  std::uint32_t sum = 0;
  for (std::uint32_t& begin : begins) {
    const std::uint32_t here = begin;
    begin = sum;
    sum += here;
  }
  for (std::size_t i = 0; i < count_; ++i)
    sorted_[begins[(entries_[i].key >> shift) & kDigit]++] = entries_[i];
  entries_.swap(sorted_);
}

std::span<const DescendingOrder::Entry> DescendingOrder::of(std::span<const float> values, int sign) {
  collect(values, sign);
  for (int i = 0; i < kPasses; ++i) pass(i * kDigitBits);
  return {entries_.data(), count_};
}

}  // namespace inference
