#include "simo/gaussian.h"

#include <cmath>

#include "simo/randomness.h"

namespace simo {
namespace {

constexpr float kUniformScale = 4.656613e-10F;
static_assert(kUniformScale == 0x1p-31F, "one over the number of values that a draw can take");

double drawUniform(RandomStream& random) {
  return static_cast<double>(random.next()) * static_cast<double>(kUniformScale);
}

// A pair of independent normal numbers, as products still to be rounded.
struct NormalPair {
  double first;
  double second;
};

NormalPair drawNormalPair(RandomStream& random) {
  for (;;) {
    // Only the first of the pair is rounded: deliberate, and kept, since every surrogate depends on it.
    const double v1 = static_cast<double>(static_cast<float>(2 * drawUniform(random) - 1));
    const double v2 = 2 * drawUniform(random) - 1;
    const double s = v1 * v1 + v2 * v2;
    if (s >= 1 || s == 0) continue;
    const double f = static_cast<double>(static_cast<float>(std::sqrt(-2 * std::log(s) / s)));
    return {v1 * f, v2 * f};
  }
}

template <class T>
void fillRow(RandomStream& random, T* row, int colFirst, int colEnd) {
  int c = colFirst;
  for (; c < colEnd - 1; c += 2) {
    const NormalPair pair = drawNormalPair(random);
    row[c] = static_cast<T>(pair.first);
    row[c + 1] = static_cast<T>(pair.second);
  }
  if (c == colEnd - 1) row[c] = static_cast<T>(drawNormalPair(random).first);
}

}  // namespace

template <class T>
void randn(Matrix<T>& m, int rowFirst, int rowEnd, int colFirst, int colEnd, unsigned int seed) {
  randn(m, rowFirst, rowEnd, colFirst, colEnd, randomStream(), static_cast<unsigned>(timeBase()) + seed);
}

template <class T>
void randn(Matrix<T>& m, int rowFirst, int rowEnd, int colFirst, int colEnd, RandomStream& random,
           unsigned int start) {
  random.seed(start);
  for (int r = rowFirst; r < rowEnd; ++r) fillRow(random, m[r], colFirst, colEnd);
}

template void randn<float>(Matrix<float>&, int, int, int, int, unsigned int);
template void randn<float>(Matrix<float>&, int, int, int, int, RandomStream&, unsigned int);

}  // namespace simo
