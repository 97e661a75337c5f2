// Vectors of 16 floats: AVX-512 F, BW, DQ and VL. See simd_scalar.h for what each operation means.
#ifndef TAVMAP_TAV_KERNEL_SIMD_AVX512_H
#define TAVMAP_TAV_KERNEL_SIMD_AVX512_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace tav::kernel {
namespace {

struct Simd {
  static constexpr int kWidth = 16;
  static constexpr int kAccumulators = 24;
  static constexpr int kRegisters = 32;
  using Floats = __m512;
  using Ints = __m512i;
  using Mask = std::uint32_t;

  static Floats zero() { return _mm512_setzero_ps(); }
  static Floats all(float v) { return _mm512_set1_ps(v); }
  static Floats load(const float* p) { return _mm512_load_ps(p); }
  static Floats loadAny(const float* p) { return _mm512_loadu_ps(p); }
  static void store(float* p, Floats v) { _mm512_store_ps(p, v); }
  static void storeAny(float* p, Floats v) { _mm512_storeu_ps(p, v); }
  static Floats madd(Floats a, Floats b, Floats c) { return _mm512_fmadd_ps(a, b, c); }
  static Floats msub(Floats a, Floats b, Floats c) { return _mm512_fnmadd_ps(a, b, c); }
  static Floats root(Floats v) { return _mm512_sqrt_ps(v); }
  static Floats magnitude(Floats v) { return _mm512_abs_ps(v); }
  static Floats withSign(Floats size, Floats sign) {
    return _mm512_or_ps(_mm512_abs_ps(size), _mm512_and_ps(sign, all(-0.0F)));
  }
  static Floats larger(Floats a, Floats b) { return _mm512_max_ps(a, b); }
  static Floats keepFirst(Floats v, int n) { return _mm512_maskz_mov_ps(firstLanes(n), v); }
  template <int kShift>
  static Floats shifted(const float*, Floats here, Floats before) {
    if constexpr (kShift == 0) return here;
    return fromBits(_mm512_alignr_epi32(bits(here), bits(before), (kWidth - kShift) % kWidth));
  }
  static void pin(Floats& v) { __asm__("" : "+v"(v)); }

  static Mask less(Floats a, Floats b) { return _mm512_cmp_ps_mask(a, b, _CMP_LT_OQ); }
  static Mask lessEqual(Floats a, Floats b) { return _mm512_cmp_ps_mask(a, b, _CMP_LE_OQ); }

  static Ints loadInts(const std::uint16_t* p) {
    return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
  }
  static Floats toFloats(Ints v) { return _mm512_cvtepi32_ps(v); }

  static Ints bits(Floats v) { return _mm512_castps_si512(v); }
  static Floats fromBits(Ints v) { return _mm512_castsi512_ps(v); }
  static Ints allInts(std::int32_t v) { return _mm512_set1_epi32(v); }
  static Ints sub(Ints a, Ints b) { return _mm512_sub_epi32(a, b); }
  static Ints both(Ints a, Ints b) { return _mm512_and_si512(a, b); }
  template <int kBits>
  static Ints shiftRight(Ints v) {
    return _mm512_srai_epi32(v, kBits);
  }

  static void loadQuads(const float* const* rows, int first, Floats* out) {
    Floats v[4];
    for (int i = 0; i < 4; ++i) {
      v[i] = _mm512_castps128_ps512(_mm_loadu_ps(rows[i] + first));
      v[i] = _mm512_insertf32x4(v[i], _mm_loadu_ps(rows[i + 4] + first), 1);
      v[i] = _mm512_insertf32x4(v[i], _mm_loadu_ps(rows[i + 8] + first), 2);
      v[i] = _mm512_insertf32x4(v[i], _mm_loadu_ps(rows[i + 12] + first), 3);
    }
    turn(v, out);
  }

  static Floats sumRows(const float* rows) {
    const Floats a = quarter(rows), b = quarter(rows + 4 * kWidth);
    const Floats c = quarter(rows + 8 * kWidth), d = quarter(rows + 12 * kWidth);
    const Floats ab = foldBlocks(a, b), cd = foldBlocks(c, d);
    return _mm512_add_ps(_mm512_shuffle_f32x4(ab, cd, 0x88), _mm512_shuffle_f32x4(ab, cd, 0xDD));
  }

 private:
  // The 4 x 4 elements of each block of four lanes, rows into columns.
  static void turn(const Floats* v, Floats* out) {
    const Floats a = _mm512_unpacklo_ps(v[0], v[1]), b = _mm512_unpackhi_ps(v[0], v[1]);
    const Floats c = _mm512_unpacklo_ps(v[2], v[3]), d = _mm512_unpackhi_ps(v[2], v[3]);
    out[0] = _mm512_shuffle_ps(a, c, 0x44);
    out[1] = _mm512_shuffle_ps(a, c, 0xEE);
    out[2] = _mm512_shuffle_ps(b, d, 0x44);
    out[3] = _mm512_shuffle_ps(b, d, 0xEE);
  }
  static __mmask16 firstLanes(int n) { return static_cast<__mmask16>((1U << n) - 1U); }
  static Floats foldPair(Floats a, Floats b) {
    return _mm512_add_ps(_mm512_unpacklo_ps(a, b), _mm512_unpackhi_ps(a, b));
  }
  // Four rows: lane i of each 128-bit block holds the block's sum of row i.
  static Floats quarter(const float* rows) {
    const Floats a = foldPair(load(rows), load(rows + kWidth));
    const Floats b = foldPair(load(rows + 2 * kWidth), load(rows + 3 * kWidth));
    return _mm512_add_ps(_mm512_shuffle_ps(a, b, 0x44), _mm512_shuffle_ps(a, b, 0xEE));
  }
  // Blocks (a0+a2, a1+a3, b0+b2, b1+b3).
  static Floats foldBlocks(Floats a, Floats b) {
    return _mm512_add_ps(_mm512_shuffle_f32x4(a, b, 0x44), _mm512_shuffle_f32x4(a, b, 0xEE));
  }
};

}  // namespace
}  // namespace tav::kernel

#endif
