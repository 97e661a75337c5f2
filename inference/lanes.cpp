#include "inference/lanes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "inference/z_table.h"

// One function for each kind of CPU, of which the loader picks one. Sanitizers of g++ run before it may.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define TAVMAP_PER_CPU __attribute__((target_clones("default", "avx2", "arch=x86-64-v4")))
#else
#define TAVMAP_PER_CPU
#endif

namespace inference {

namespace {

typedef float Vec __attribute__((vector_size(kLanes * sizeof(float))));
typedef std::int32_t Whole __attribute__((vector_size(kLanes * sizeof(float))));

}  // namespace

// Four vectors at a time: as many sums under way as hide an addition's latency.
TAVMAP_PER_CPU
void correlateLanes(const float* data, std::size_t vectors, std::size_t rows, const float* weights,
                    std::size_t shuffles, float* out, std::size_t stride) {
  const auto* in = reinterpret_cast<const Vec*>(data);
  for (std::size_t s = 0; s < shuffles; ++s, weights += rows) {
    auto* to = reinterpret_cast<Vec*>(out + s * stride);
    std::size_t v = 0;
    for (; v + 4 <= vectors; v += 4) {
      Vec a = {}, b = {}, c = {}, d = {};
      const Vec *pa = in + v * rows, *pb = pa + rows, *pc = pb + rows, *pd = pc + rows;
      for (std::size_t row = 0; row < rows; ++row) {
        const float w = weights[row];
        a += pa[row] * w;
        b += pb[row] * w;
        c += pc[row] * w;
        d += pd[row] * w;
      }
      to[v] = a, to[v + 1] = b, to[v + 2] = c, to[v + 3] = d;
    }
    for (; v < vectors; ++v) {
      Vec a = {};
      for (std::size_t row = 0; row < rows; ++row) a += in[v * rows + row] * weights[row];
      to[v] = a;
    }
  }
}

TAVMAP_PER_CPU
void addSquares(const float* values, std::size_t n, float* squares) {
  for (std::size_t i = 0; i < n; ++i) squares[i] += values[i] * values[i];
}

TAVMAP_PER_CPU
void divideByRest(float* values, const float* squares, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const float rest = 1 - squares[i];
    values[i] /= __builtin_sqrtf(rest > 0x1p-24F ? rest : 0x1p-24F);
  }
}

TAVMAP_PER_CPU
void tallyLanes(const float* values, const float* observed, std::size_t vectors, bool isTwoSided,
                std::int32_t* counts, float* largest) {
  const auto* in = reinterpret_cast<const Vec*>(values);
  const auto* bounds = reinterpret_cast<const Vec*>(observed);
  auto* sums = reinterpret_cast<Whole*>(counts);
  Vec most;
  std::memcpy(&most, largest, sizeof most);
  for (std::size_t v = 0; v < vectors; ++v) {
    Vec value = in[v];
    if (isTwoSided) value = value < 0 ? -value : value;
    sums[v] -= value >= bounds[v];  // true is -1
    most = value > most ? value : most;
  }
  std::memcpy(largest, &most, sizeof most);
}

TAVMAP_PER_CPU
void zOfCorrelations(float* values, std::size_t n, const float* table) {
  for (std::size_t i = 0; i < n; ++i) {
    const float rest = 1 - values[i] * values[i];
    const float held = rest > ZTable::kLeast ? rest : ZTable::kLeast;
    std::int32_t bits = 0;
    std::memcpy(&bits, &held, sizeof bits);
    bits -= ZTable::kLeastBits;
    const std::int32_t segment = bits >> ZTable::kShift;
    const auto part = static_cast<float>(bits & ((1 << ZTable::kShift) - 1)) * ZTable::kPart;
    const float begin = table[segment];
    values[i] *= begin + part * (table[segment + 1] - begin);
  }
}

TAVMAP_PER_CPU
void addScaled(const float* from, float weight, std::size_t n, float* __restrict to) {
  for (std::size_t i = 0; i < n; ++i) to[i] += weight * from[i];
}

TAVMAP_PER_CPU
void restVariances(const float* factors, const float* squares, const float* along, std::size_t n,
                   float* __restrict out) {
  for (std::size_t i = 0; i < n; ++i) out[i] = factors[i] * (1 - squares[i] - along[i] * along[i]);
}

TAVMAP_PER_CPU
void divideByDeviation(float* values, const float* lengths, const float* variances, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i)
    values[i] = variances[i] > 0 ? values[i] * lengths[i] / __builtin_sqrtf(variances[i]) : 0;
}

}  // namespace inference
