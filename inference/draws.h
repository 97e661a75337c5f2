// The random numbers of one shuffle.
#ifndef TAVMAP_INFERENCE_DRAWS_H
#define TAVMAP_INFERENCE_DRAWS_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "simo/random_stream.h"

namespace inference {

// Follows from a seed and an index alone, so that shuffles can be made in any order on any thread.
class Draws {
 public:
  Draws(std::uint32_t seed, std::size_t index)
      : stream_(mixed(mixed(seed + 0x9e3779b9U) + static_cast<std::uint32_t>(index))) {}

  [[nodiscard]] bool coin() { return stream_.next() > simo::kRandomMax / 2; }
  // 0 ... below - 1, each as likely; below is at least 1.
  [[nodiscard]] int below(int below) {
    const int last =
        simo::kRandomMax - simo::kRandomMax % below;  // what lies beyond would favour small numbers
    for (;;)
      if (const int number = stream_.next(); number < last) return number % below;
  }
  // Any order, each as likely (Fisher & Yates).
  void shuffle(std::vector<int>& values) {
    for (std::size_t i = values.size(); i > 1; --i)
      std::swap(values[i - 1], values[static_cast<std::size_t>(below(static_cast<int>(i)))]);
  }

 private:
  // One to one: indices of one seed have different streams (the finalizer of Appleby's MurmurHash3).
  static constexpr std::uint32_t mixed(std::uint32_t x) {
    x = (x ^ (x >> 16U)) * 0x85ebca6bU;
    x = (x ^ (x >> 13U)) * 0xc2b2ae35U;
    return x ^ (x >> 16U);
  }

  simo::RandomStream stream_;
};

}  // namespace inference

#endif
