// Remainders by a divisor that stays the same, without a division.
#ifndef TAVMAP_SIMO_REMAINDER_H
#define TAVMAP_SIMO_REMAINDER_H

#include <cstdint>

namespace simo {

// n % divisor for every 32-bit n and divisor > 0; a divisor of 0 gives 0. The fraction of n / divisor,
// to 64 bits, times the divisor (Lemire, Kaser & Kurz, Faster remainder by direct computation,
// Software: Practice and Experience 49, 2019).
class Remainder {
 public:
  constexpr explicit Remainder(std::uint32_t divisor)
      : divisor_(divisor), inverse_(divisor == 0 ? 0 : UINT64_MAX / divisor + 1) {}

  [[nodiscard]] constexpr std::uint32_t operator()(std::uint32_t n) const {
    const std::uint64_t fraction = inverse_ * n;  // modulo 2^64
    const std::uint64_t low = (fraction & UINT32_MAX) * divisor_ >> 32U;
    return static_cast<std::uint32_t>(((fraction >> 32U) * divisor_ + low) >> 32U);
  }

 private:
  std::uint64_t divisor_, inverse_;
};

}  // namespace simo

#endif
