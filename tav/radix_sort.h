// Sorting numbers of 32 bits in linear time.
#ifndef TAVMAP_TAV_RADIX_SORT_H
#define TAVMAP_TAV_RADIX_SORT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace tav {

// Orders the values by keyOf(value), a std::uint32_t, ascending; equal ones keep their order. Takes their
// memory once more. The key's least significant 11 bits are sorted by first; every pass keeps the order of
// the one before.
template <class Value, class KeyOf>
void radixSort(std::vector<Value>& values, KeyOf keyOf) {
  constexpr unsigned kDigits = 3, kBits = 11;
  constexpr std::size_t kBuckets = std::size_t{1} << kBits;
  const auto digit = [&](const Value& value, unsigned d) {
    return (std::uint32_t{keyOf(value)} >> (d * kBits)) & (kBuckets - 1);
  };
  std::array<std::array<std::size_t, kBuckets>, kDigits> starts{};
  for (const Value& value : values) {
    for (unsigned d = 0; d < kDigits; ++d) ++starts[d][digit(value, d)];
  }
  std::vector<Value> sorted(values.size());
  for (unsigned d = 0; d < kDigits; ++d) {
    auto& start = starts[d];
    std::exclusive_scan(start.begin(), start.end(), start.begin(), std::size_t{0});
    for (const Value& value : values) sorted[start[digit(value, d)]++] = value;
    values.swap(sorted);
  }
}

}  // namespace tav

#endif
