// The recurrence of simo::RandomStream, and how to get far ahead in it without the numbers between.
#ifndef TAVMAP_SIMO_LAGGED_FIBONACCI_H
#define TAVMAP_SIMO_LAGGED_FIBONACCI_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace simo {

// x(n) = x(n - 31) + x(n - 3) modulo 2^32. 31 consecutive numbers are its whole state.
class LaggedFibonacci {
 public:
  static constexpr std::size_t kLag = 31, kShortLag = 3;
  using Numbers = std::array<std::uint32_t, kLag>;  // x(n - 31) ... x(n - 1)

  // The state `count` numbers on. The recurrence is linear: x(n - 31 + count) is a sum of the numbers of the
  // state whose weights are the coefficients of z^count modulo z^31 - z^28 - 1 (Knuth, The Art of Computer
  // Programming 2, 3.2.2). Cost: 31 x 31 products for every bit of `count`.
  [[nodiscard]] static constexpr Numbers advanced(const Numbers& state, std::uint64_t count) {
    Numbers weights{1};  // of z^0
    for (int bit = static_cast<int>(std::bit_width(count)); bit-- > 0;) {
      weights = reduced(squared(weights));
      if ((count >> static_cast<unsigned>(bit) & 1U) != 0) weights = timesZ(weights);
    }
    Numbers ahead{};
    for (std::uint32_t& number : ahead) {
      for (std::size_t i = 0; i < kLag; ++i) number += weights[i] * state[i];
      weights = timesZ(weights);
    }
    return ahead;
  }

 private:
  using Product = std::array<std::uint32_t, 2 * kLag - 1>;

  static constexpr Product squared(const Numbers& a) {
    Product product{};
    for (std::size_t i = 0; i < kLag; ++i)
      for (std::size_t j = 0; j < kLag; ++j) product[i + j] += a[i] * a[j];
    return product;
  }
  static constexpr Numbers reduced(Product product) {
    for (std::size_t power = product.size() - 1; power >= kLag; --power) {
      product[power - kLag] += product[power];
      product[power - kShortLag] += product[power];
    }
    Numbers rest{};
    for (std::size_t i = 0; i < kLag; ++i) rest[i] = product[i];
    return rest;
  }
  static constexpr Numbers timesZ(const Numbers& a) {
    Numbers shifted{a[kLag - 1]};
    for (std::size_t i = 1; i < kLag; ++i) shifted[i] = a[i - 1];
    shifted[kLag - kShortLag] += a[kLag - 1];
    return shifted;
  }
};

}  // namespace simo

#endif
