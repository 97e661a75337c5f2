// Vectors of 8 floats: AVX2 and FMA. See simd_scalar.h for what each operation means.
#ifndef TAVMAP_TAV_KERNEL_SIMD_AVX2_H
#define TAVMAP_TAV_KERNEL_SIMD_AVX2_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace tav::kernel {
namespace {

// Loaded from kWidth - n on, the first n lanes are all ones.
alignas(64) constexpr std::int32_t kLaneMasks[16] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};

struct Simd {
  static constexpr int kWidth = 8;
  static constexpr int kAccumulators = 12;
  static constexpr int kRegisters = 16;
  using Floats = __m256;
  using Ints = __m256i;
  using Mask = std::uint32_t;

  static Floats zero() { return _mm256_setzero_ps(); }
  static Floats all(float v) { return _mm256_set1_ps(v); }
  static Floats load(const float* p) { return _mm256_load_ps(p); }
  static Floats loadAny(const float* p) { return _mm256_loadu_ps(p); }
  static void store(float* p, Floats v) { _mm256_store_ps(p, v); }
  static void storeAny(float* p, Floats v) { _mm256_storeu_ps(p, v); }
  static Floats madd(Floats a, Floats b, Floats c) { return _mm256_fmadd_ps(a, b, c); }
  static Floats msub(Floats a, Floats b, Floats c) { return _mm256_fnmadd_ps(a, b, c); }
  static Floats root(Floats v) { return _mm256_sqrt_ps(v); }
  static Floats magnitude(Floats v) { return _mm256_andnot_ps(all(-0.0F), v); }
  static Floats withSign(Floats size, Floats sign) {
    return _mm256_or_ps(_mm256_andnot_ps(all(-0.0F), size), _mm256_and_ps(sign, all(-0.0F)));
  }
  static Floats larger(Floats a, Floats b) { return _mm256_max_ps(a, b); }
  static Floats keepFirst(Floats v, int n) { return _mm256_and_ps(v, fromBits(firstLanes(n))); }
  template <int kShift>
  static Floats shifted(const float* p, Floats, Floats) {
    Floats v = loadAny(p - kShift);
    pin(v);
    return v;
  }
  static void pin(Floats& v) { __asm__("" : "+x"(v)); }

  static Mask less(Floats a, Floats b) { return mask(_mm256_cmp_ps(a, b, _CMP_LT_OQ)); }
  static Mask lessEqual(Floats a, Floats b) { return mask(_mm256_cmp_ps(a, b, _CMP_LE_OQ)); }

  static Ints loadInts(const std::uint16_t* p) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
  }
  static Floats toFloats(Ints v) { return _mm256_cvtepi32_ps(v); }

  static Ints bits(Floats v) { return _mm256_castps_si256(v); }
  static Floats fromBits(Ints v) { return _mm256_castsi256_ps(v); }
  static Ints allInts(std::int32_t v) { return _mm256_set1_epi32(v); }
  static Ints sub(Ints a, Ints b) { return _mm256_sub_epi32(a, b); }
  static Ints both(Ints a, Ints b) { return _mm256_and_si256(a, b); }
  template <int kBits>
  static Ints shiftRight(Ints v) {
    return _mm256_srai_epi32(v, kBits);
  }

  static void loadQuads(const float* const* rows, int first, Floats* out) {
    Floats v[4];
    for (int i = 0; i < 4; ++i) {
      const __m128 upper = _mm_loadu_ps(rows[i + 4] + first);
      v[i] = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(rows[i] + first)), upper, 1);
    }
    turn(v, out);
  }

  static Floats sumRows(const float* rows) {
    const Floats a = half(rows), b = half(rows + 4 * kWidth);
    return _mm256_add_ps(_mm256_permute2f128_ps(a, b, 0x20), _mm256_permute2f128_ps(a, b, 0x31));
  }

 private:
  // The 4 x 4 elements of each block of four lanes, rows into columns.
  static void turn(const Floats* v, Floats* out) {
    const Floats a = _mm256_unpacklo_ps(v[0], v[1]), b = _mm256_unpackhi_ps(v[0], v[1]);
    const Floats c = _mm256_unpacklo_ps(v[2], v[3]), d = _mm256_unpackhi_ps(v[2], v[3]);
    out[0] = _mm256_shuffle_ps(a, c, 0x44);
    out[1] = _mm256_shuffle_ps(a, c, 0xEE);
    out[2] = _mm256_shuffle_ps(b, d, 0x44);
    out[3] = _mm256_shuffle_ps(b, d, 0xEE);
  }
  static Mask mask(Floats v) { return static_cast<Mask>(_mm256_movemask_ps(v)); }
  static Ints firstLanes(int n) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(kLaneMasks + kWidth - n));
  }
  static Floats foldPair(Floats a, Floats b) {
    return _mm256_add_ps(_mm256_unpacklo_ps(a, b), _mm256_unpackhi_ps(a, b));
  }
  // Four rows: lane i of each 128-bit block holds the block's sum of row i.
  static Floats half(const float* rows) {
    const Floats a = foldPair(load(rows), load(rows + kWidth));
    const Floats b = foldPair(load(rows + 2 * kWidth), load(rows + 3 * kWidth));
    return _mm256_add_ps(_mm256_shuffle_ps(a, b, 0x44), _mm256_shuffle_ps(a, b, 0xEE));
  }
};

}  // namespace
}  // namespace tav::kernel

#endif
