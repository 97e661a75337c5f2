#include "formats/time_courses.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace formats {
namespace {

// A tile of 16 volumes by 64 voxels: its 64 rows of output are 64 bytes (floats) each, one cache
// line, and the tile itself (4 KB) stays in the first-level cache between its two steps:
//
//   stored            tile                    out
//   t0 [v v v v ...]  t0 [v v v v ...]        v0 [... t0 t1 t2 ... t15 ...]
//   t1 [v v v v ...]  t1 [v v v v ...]   ->   v1 [... t0 t1 t2 ... t15 ...]
//   (far apart)  convert                 turn
constexpr std::size_t kTileVolumes = 16, kTileVoxels = 64;

// Adding 1.5 * 2^23 to a float, or 1.5 * 2^52 to a double, rounds it to a whole number, half to
// even, which the lowest bits of the sum then hold.
template <typename Real>
struct Push;
template <>
struct Push<float> {
  using Bits = std::uint32_t;
  static constexpr float kValue = 12582912;
};
template <>
struct Push<double> {
  using Bits = std::uint64_t;
  static constexpr double kValue = 6755399441055744;
};

// True when all values fit, as they nearly always do: all other bits are then those of the constant.
template <typename Real, typename Stored, typename Scale>
bool pushTile(const Stored* stored, Scale scale, std::uint16_t* out) {
  using Bits = typename Push<Real>::Bits;
  Bits different = 0;
  for (std::size_t i = 0; i < kTileVoxels; ++i) {
    const Bits bits = std::bit_cast<Bits>(scale(static_cast<Real>(stored[i])) + Push<Real>::kValue);
    different |= bits ^ std::bit_cast<Bits>(Push<Real>::kValue);
    out[i] = static_cast<std::uint16_t>(bits);
  }
  return different >> 16U == 0;
}

// For a tile with values that do not fit.
template <typename Stored>
void roundTile(const Stored* stored, const Scaling& scaling, std::uint16_t* out) {
  constexpr double kLargest = std::numeric_limits<std::uint16_t>::max();
  for (std::size_t i = 0; i < kTileVoxels; ++i) {
    const double value = std::nearbyint(scaling.slope * static_cast<double>(stored[i]) + scaling.intercept);
    out[i] = static_cast<std::uint16_t>(value >= 0 && value <= kLargest ? value : 0);
  }
}

// Small whole numbers plus a whole constant need no floating point.
template <typename Stored>
bool addTile(const Stored* stored, std::int32_t constant, std::uint16_t* out) {
  std::uint32_t high = 0;  // bits above the sixteenth of any value
  for (std::size_t i = 0; i < kTileVoxels; ++i) {
    const auto value = static_cast<std::uint32_t>(static_cast<std::int32_t>(stored[i]) + constant);
    high |= value >> 16U;
    out[i] = static_cast<std::uint16_t>(value);
  }
  return high == 0;
}

bool isSmallWholeNumber(double value) {
  return value == std::nearbyint(value) && std::abs(value) < 1e9;
}

template <typename Stored>
bool tryTile(const Stored* stored, const Scaling& scaling, std::uint16_t* out) {
  if constexpr (std::is_integral_v<Stored> && sizeof(Stored) <= 2) {
    if (scaling.slope == 1 && isSmallWholeNumber(scaling.intercept)) {
      return addTile(stored, static_cast<std::int32_t>(scaling.intercept), out);
    }
  }
  if constexpr (std::is_same_v<Stored, float>) {
    if (scaling.isIdentity())
      return pushTile<float>(
          stored, [](float value) { return value; }, out);
  }
  return pushTile<double>(
      stored, [&](double value) { return scaling.slope * value + scaling.intercept; }, out);
}

template <typename Stored>
bool convertTile(const Stored* stored, const Scaling& scaling, std::uint16_t* out) {
  const bool fits = tryTile(stored, scaling, out);
  if (!fits) roundTile(stored, scaling, out);
  return fits;
}

template <typename Stored>
bool convertTile(const Stored* stored, const Scaling& scaling, float* out) {
  scaleValues(stored, kTileVoxels, scaling, out);
  return true;
}

// One row of a tile. Stored values may start anywhere in a byte buffer: they are copied out of it,
// which also gives the place to turn their bytes. A short row is filled up, so that the loops above
// have a length that the compiler knows; only `count` results are used.
template <typename Stored, typename Out>
bool convertRowOfTile(const StoredForm& form, const char* stored, std::size_t count, Out* out) {
  Stored values[kTileVoxels];
  if (count == kTileVoxels) {  // a length that the compiler knows: g++ makes "rep movs" of any other
    std::memcpy(values, stored, sizeof values);
  } else {
    std::memcpy(values, stored, count * sizeof(Stored));
    // Repeats a value of the row, so that the padding fits whenever the row does.
    std::fill(values + count, values + kTileVoxels, values[0]);
  }
  if (form.swapped) std::transform(values, values + kTileVoxels, values, swapBytes<Stored>);
  return convertTile(values, form.scaling, out);
}

template <typename Out>
void turnAny(const Out (&tile)[kTileVolumes][kTileVoxels], std::size_t voxels, std::size_t volumesHere,
             std::size_t volumes, Out* out) {
  for (std::size_t v = 0; v < voxels; ++v) {
    for (std::size_t t = 0; t < volumesHere; ++t) out[v * volumes + t] = tile[t][v];
  }
}

// Registers of 16 bytes and the two ways to take turns between the lanes of two of them.
template <typename Value>
struct Lanes;
template <>
struct Lanes<float> {
  static constexpr std::size_t kCount = 4;
  using Vector = float __attribute__((vector_size(16)));
  static Vector low(Vector a, Vector b) { return __builtin_shufflevector(a, b, 0, 4, 1, 5); }
  static Vector high(Vector a, Vector b) { return __builtin_shufflevector(a, b, 2, 6, 3, 7); }
};
template <>
struct Lanes<std::uint16_t> {
  static constexpr std::size_t kCount = 8;
  using Vector = std::uint16_t __attribute__((vector_size(16)));
  static Vector low(Vector a, Vector b) { return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11); }
  static Vector high(Vector a, Vector b) { return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15); }
};

// A square block of n rows by n lanes. Interleaving row i with row i + n/2 is a perfect shuffle of
// all n * n values; log2(n) of them exchange the upper and the lower half of every value's index
// bits, which is the transposition.
template <typename Value>
inline void turnSquare(const Value* from, std::size_t fromStep, Value* to, std::size_t toStep) {
  using L = Lanes<Value>;
  constexpr std::size_t n = L::kCount;
  typename L::Vector rows[n], shuffled[n];
#pragma GCC unroll 8  // keeps the rows in registers
  for (std::size_t i = 0; i < n; ++i) std::memcpy(&rows[i], from + i * fromStep, sizeof rows[i]);
#pragma GCC unroll 3
  for (std::size_t pass = 1; pass < n; pass *= 2) {
#pragma GCC unroll 4
    for (std::size_t i = 0; i < n / 2; ++i) {
      shuffled[2 * i] = L::low(rows[i], rows[i + n / 2]);
      shuffled[2 * i + 1] = L::high(rows[i], rows[i + n / 2]);
    }
#pragma GCC unroll 8
    for (std::size_t i = 0; i < n; ++i) rows[i] = shuffled[i];
  }
#pragma GCC unroll 8
  for (std::size_t i = 0; i < n; ++i) std::memcpy(to + i * toStep, &rows[i], sizeof rows[i]);
}

template <typename Out>
void turn(const Out (&tile)[kTileVolumes][kTileVoxels], std::size_t voxels, std::size_t volumesHere,
          std::size_t volumes, Out* out) {
  if (voxels != kTileVoxels || volumesHere != kTileVolumes)
    return turnAny(tile, voxels, volumesHere, volumes, out);
  constexpr std::size_t n = Lanes<Out>::kCount;
  for (std::size_t v = 0; v < kTileVoxels; v += n) {
    for (std::size_t t = 0; t < kTileVolumes; t += n) {
      turnSquare(&tile[t][v], kTileVoxels, out + v * volumes + t, volumes);
    }
  }
}

template <typename Stored, typename Out>
bool turnTiles(const StoredForm& form, const SeriesSlab& slab, std::size_t first, std::size_t voxels,
               std::size_t volumes, Out* out) {
  Out tile[kTileVolumes][kTileVoxels];
  bool fits = true;
  for (std::size_t v = 0; v < voxels; v += kTileVoxels) {
    const std::size_t voxelsHere = std::min(kTileVoxels, voxels - v);
    for (std::size_t t = 0; t < volumes; t += kTileVolumes) {
      const std::size_t volumesHere = std::min(kTileVolumes, volumes - t);
      for (std::size_t i = 0; i < volumesHere; ++i) {
        const char* row = slab.data + (t + i) * slab.volumeStride + (first + v) * sizeof(Stored);
        fits = convertRowOfTile<Stored>(form, row, voxelsHere, tile[i]) && fits;
      }
      turn(tile, voxelsHere, volumesHere, volumes, out + v * volumes + t);
    }
  }
  return fits;
}

}  // namespace

template <typename Out>
bool convertRow(const StoredForm& form, const char* stored, std::size_t count, Out* out) {
  bool fits = true;
  withStoredType(form.type, [&](auto sample) {
    using Stored = decltype(sample);
    for (std::size_t i = 0; i < count; i += kTileVoxels) {
      const std::size_t now = std::min(kTileVoxels, count - i);
      Out tile[kTileVoxels];
      fits = convertRowOfTile<Stored>(form, stored + i * sizeof(Stored), now, tile) && fits;
      std::copy_n(tile, now, out + i);
    }
  });
  return fits;
}

template <typename Out>
bool toTimeCourses(const StoredForm& form, const SeriesSlab& slab, std::size_t first, std::size_t voxels,
                   std::size_t volumes, Out* out) {
  bool fits = true;
  withStoredType(form.type, [&](auto sample) {
    fits = turnTiles<decltype(sample)>(form, slab, first, voxels, volumes, out);
  });
  return fits;
}

template bool convertRow(const StoredForm&, const char*, std::size_t, float*);
template bool convertRow(const StoredForm&, const char*, std::size_t, std::uint16_t*);
template bool toTimeCourses(const StoredForm&, const SeriesSlab&, std::size_t, std::size_t, std::size_t,
                            float*);
template bool toTimeCourses(const StoredForm&, const SeriesSlab&, std::size_t, std::size_t, std::size_t,
                            std::uint16_t*);

}  // namespace formats
