// "Vectors" of one float in plain C++, for any machine. This file also says what the operations
// of every Simd mean:
//   load, store        aligned to the vector; loadAny, storeAny not
//   madd(a, b, c)      c + a * b;  msub(a, b, c)  c - a * b; one rounding or two, as the CPU does
//   keepFirst(v, n)    v with 0 in the lanes from n on, 0 <= n <= kWidth
//   withSign(a, b)     the size of a with the sign of b
//   larger(a, b)       the larger one; b when either is NaN
//   shifted<k>(p, here, before)  the values k before p. `here` is what stands at p, `before` what stands
//                      in front of it, for CPUs that shift faster than they load across lines
//   pin(v)             keeps v in a register: without it g++ 12 reloads a shifted row for every
//                      product that it enters
//   less, lessEqual    bit i: the comparison holds in lane i (never with NaN)
//   sumRows(rows)      lane i: the sum of the kWidth values of row i of kWidth rows. Every lane
//                      adds in the same order, so that a voxel's lane does not change its result.
//   loadQuads(rows, first, out)  lane l of out[i], i = 0 ... 3: value first + i of row l
//   kAccumulators      sums that a loop may carry without spilling
//   kRegisters         vectors that the CPU holds
#ifndef TAVMAP_TAV_KERNEL_SIMD_SCALAR_H
#define TAVMAP_TAV_KERNEL_SIMD_SCALAR_H

#include <cstddef>
#include <cstdint>

namespace tav::kernel {
namespace {

struct Simd {
  static constexpr int kWidth = 1;
  static constexpr int kAccumulators = 9;
  static constexpr int kRegisters = 16;
  using Floats = float;
  using Ints = std::int32_t;
  using Mask = std::uint32_t;

  static Floats zero() { return 0.0F; }
  static Floats all(float v) { return v; }
  static Floats load(const float* p) { return *p; }
  static Floats loadAny(const float* p) { return *p; }
  static void store(float* p, Floats v) { *p = v; }
  static void storeAny(float* p, Floats v) { *p = v; }
  static Floats madd(Floats a, Floats b, Floats c) { return c + a * b; }
  static Floats msub(Floats a, Floats b, Floats c) { return c - a * b; }
  static Floats root(Floats v) { return __builtin_sqrtf(v); }
  static Floats magnitude(Floats v) { return __builtin_fabsf(v); }
  static Floats withSign(Floats size, Floats sign) { return __builtin_copysignf(size, sign); }
  static Floats larger(Floats a, Floats b) { return a > b ? a : b; }
  static Floats keepFirst(Floats v, int n) { return n > 0 ? v : 0.0F; }
  template <int kShift>
  static Floats shifted(const float* p, Floats, Floats) {
    Floats v = loadAny(p - kShift);
    pin(v);
    return v;
  }
  static void pin(Floats&) {}

  static Mask less(Floats a, Floats b) { return a < b ? 1U : 0U; }
  static Mask lessEqual(Floats a, Floats b) { return a <= b ? 1U : 0U; }

  static Ints loadInts(const std::uint16_t* p) { return *p; }
  static Floats toFloats(Ints v) { return static_cast<float>(v); }

  static Ints bits(Floats v) { return __builtin_bit_cast(Ints, v); }
  static Floats fromBits(Ints v) { return __builtin_bit_cast(Floats, v); }
  static Ints allInts(std::int32_t v) { return v; }
  static Ints sub(Ints a, Ints b) {
    return static_cast<Ints>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
  }
  static Ints both(Ints a, Ints b) { return a & b; }
  template <int kBits>
  static Ints shiftRight(Ints v) {
    return v >> kBits;
  }

  static void loadQuads(const float* const* rows, int first, Floats* out) {
    for (int i = 0; i < 4; ++i) out[i] = rows[0][first + i];
  }

  static Floats sumRows(const float* rows) { return *rows; }
};

}  // namespace
}  // namespace tav::kernel

#endif
