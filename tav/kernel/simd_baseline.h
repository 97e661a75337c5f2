// Vectors of 4 floats: SSE2, which every x86-64 CPU has. See simd_scalar.h for what each operation
// means.
#ifndef TAVMAP_TAV_KERNEL_SIMD_BASELINE_H
#define TAVMAP_TAV_KERNEL_SIMD_BASELINE_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace tav::kernel {
namespace {

// Loaded from kWidth - n on, the first n lanes are all ones.
alignas(64) constexpr std::int32_t kLaneMasks[8] = {-1, -1, -1, -1, 0, 0, 0, 0};

struct Simd {
  static constexpr int kWidth = 4;
  static constexpr int kAccumulators = 9;  // the products need registers of their own
  static constexpr int kRegisters = 16;
  using Floats = __m128;
  using Ints = __m128i;
  using Mask = std::uint32_t;

  static Floats zero() { return _mm_setzero_ps(); }
  static Floats all(float v) { return _mm_set1_ps(v); }
  static Floats load(const float* p) { return _mm_load_ps(p); }
  static Floats loadAny(const float* p) { return _mm_loadu_ps(p); }
  static void store(float* p, Floats v) { _mm_store_ps(p, v); }
  static void storeAny(float* p, Floats v) { _mm_storeu_ps(p, v); }
  static Floats madd(Floats a, Floats b, Floats c) { return _mm_add_ps(c, _mm_mul_ps(a, b)); }
  static Floats msub(Floats a, Floats b, Floats c) { return _mm_sub_ps(c, _mm_mul_ps(a, b)); }
  static Floats root(Floats v) { return _mm_sqrt_ps(v); }
  static Floats magnitude(Floats v) { return _mm_andnot_ps(all(-0.0F), v); }
  static Floats withSign(Floats size, Floats sign) {
    return _mm_or_ps(_mm_andnot_ps(all(-0.0F), size), _mm_and_ps(sign, all(-0.0F)));
  }
  static Floats larger(Floats a, Floats b) { return _mm_max_ps(a, b); }
  static Floats keepFirst(Floats v, int n) { return _mm_and_ps(v, fromBits(firstLanes(n))); }
  template <int kShift>
  static Floats shifted(const float* p, Floats, Floats) {
    Floats v = loadAny(p - kShift);
    pin(v);
    return v;
  }
  static void pin(Floats& v) { __asm__("" : "+x"(v)); }

  static Mask less(Floats a, Floats b) { return mask(_mm_cmplt_ps(a, b)); }
  static Mask lessEqual(Floats a, Floats b) { return mask(_mm_cmple_ps(a, b)); }

  static Ints zeroInts() { return _mm_setzero_si128(); }
  static Ints loadInts(const std::uint16_t* p) {
    return _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), zeroInts());
  }
  static Floats toFloats(Ints v) { return _mm_cvtepi32_ps(v); }

  static Ints bits(Floats v) { return _mm_castps_si128(v); }
  static Floats fromBits(Ints v) { return _mm_castsi128_ps(v); }
  static Ints allInts(std::int32_t v) { return _mm_set1_epi32(v); }
  static Ints sub(Ints a, Ints b) { return _mm_sub_epi32(a, b); }
  static Ints both(Ints a, Ints b) { return _mm_and_si128(a, b); }
  template <int kBits>
  static Ints shiftRight(Ints v) {
    return _mm_srai_epi32(v, kBits);
  }

  static void loadQuads(const float* const* rows, int first, Floats* out) {
    Floats v[4];
    for (int i = 0; i < 4; ++i) v[i] = loadAny(rows[i] + first);
    turn(v, out);
  }

  static Floats sumRows(const float* rows) {
    const Floats a = foldPair(load(rows), load(rows + kWidth));
    const Floats b = foldPair(load(rows + 2 * kWidth), load(rows + 3 * kWidth));
    return _mm_add_ps(_mm_movelh_ps(a, b), _mm_movehl_ps(b, a));
  }

 private:
  // The 4 x 4 elements of each block of four lanes, rows into columns.
  static void turn(const Floats* v, Floats* out) {
    const Floats a = _mm_unpacklo_ps(v[0], v[1]), b = _mm_unpackhi_ps(v[0], v[1]);
    const Floats c = _mm_unpacklo_ps(v[2], v[3]), d = _mm_unpackhi_ps(v[2], v[3]);
    out[0] = _mm_shuffle_ps(a, c, 0x44);
    out[1] = _mm_shuffle_ps(a, c, 0xEE);
    out[2] = _mm_shuffle_ps(b, d, 0x44);
    out[3] = _mm_shuffle_ps(b, d, 0xEE);
  }
  static Mask mask(Floats v) { return static_cast<Mask>(_mm_movemask_ps(v)); }
  static Ints firstLanes(int n) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(kLaneMasks + kWidth - n));
  }
  static Floats foldPair(Floats a, Floats b) {
    return _mm_add_ps(_mm_unpacklo_ps(a, b), _mm_unpackhi_ps(a, b));
  }
};

}  // namespace
}  // namespace tav::kernel

#endif
