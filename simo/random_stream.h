// The generator behind every simulated number.
#ifndef TAVMAP_SIMO_RANDOM_STREAM_H
#define TAVMAP_SIMO_RANDOM_STREAM_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "simo/lagged_fibonacci.h"

namespace simo {

// The largest number drawn; the normal numbers rely on exactly this range.
inline constexpr int kRandomMax = 2147483647;

// Draws the numbers that the C library's srand and rand draw on Linux, in their order, from a state
// of its own: no lock, and nothing that a host draws disturbs it. A copy goes on independently with
// the same numbers.
//
// An additive lagged Fibonacci generator (Knuth, The Art of Computer Programming 2, 3.2.2):
// x(n) = x(n - 31) + x(n - 3) modulo 2^32, without its lowest bit. The first 31 numbers come from
// the minimal standard generator (Park & Miller, CACM 31, 1988); the 310 after them are dropped.
class RandomStream {
 public:
  constexpr explicit RandomStream(unsigned start = 1) { seed(start); }

  // Restarts the sequence, as srand(start) would; 0 counts as 1.
  constexpr void seed(unsigned start) {
    auto number = static_cast<std::int32_t>(start == 0 ? 1U : start);
    for (std::uint32_t& slot : state_) {
      slot = static_cast<std::uint32_t>(number);
      number = minimalStandardAfter(number);
    }
    oldest_ = 3;  // the first three of them count as the latest
    skip(10 * state_.size());
  }

  // The next number, 0 ... kRandomMax, as rand() would give.
  [[nodiscard]] constexpr int next() {
    const std::size_t back = oldest_ + state_.size() - 3;
    const std::uint32_t sum = state_[oldest_] += state_[back < state_.size() ? back : back - state_.size()];
    if (++oldest_ == state_.size()) oldest_ = 0;
    return static_cast<int>(sum >> 1U);
  }

  // Goes on as if `count` numbers had been drawn. Takes tens of microseconds at most.
  constexpr void skip(std::uint64_t count) {
    if (count >= kFarAhead) return leap(count);
    for (std::uint64_t i = 0; i < count; ++i) static_cast<void>(next());
  }

 private:
  static constexpr std::uint64_t kFarAhead = 20000;  // from here on drawing costs more than leaping

  constexpr void leap(std::uint64_t count) {
    LaggedFibonacci::Numbers inOrder{};
    for (std::size_t i = 0; i < state_.size(); ++i) inOrder[i] = state_[(oldest_ + i) % state_.size()];
    state_ = LaggedFibonacci::advanced(inOrder, count);
    oldest_ = 0;
  }

  static constexpr std::int32_t minimalStandardAfter(std::int32_t number) {
    const std::int64_t rest = std::int64_t{16807} * number % kRandomMax;
    return static_cast<std::int32_t>(rest < 0 ? rest + kRandomMax : rest);
  }

  LaggedFibonacci::Numbers state_{};  // the last 31 numbers, in a ring
  std::size_t oldest_ = 0;            // x(n - 31)
};

}  // namespace simo

#endif
