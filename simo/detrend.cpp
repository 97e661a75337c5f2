#include "simo/detrend.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace simo {
namespace {

// In double, so that the residuals of a constant are exactly 0 whatever its value and length.
template <class T>
T meanOf(const T* values, int count) {
  double sum = 0;
  for (int t = 0; t < count; ++t) sum += static_cast<double>(values[t]);
  return static_cast<T>(sum / count);
}

// The ramp from -0.5 to +0.5 at time t of d + 1 points. Centred, so that removing its multiple
// leaves the mean at zero.
template <class T>
T ramp(int t, T d) {
  return static_cast<T>(t) / d - T{0.5F};
}

template <class T, class U>
void removeMean(const T* values, int count, U* residuals) {
  const T mean = meanOf(values, count);
  for (int t = 0; t < count; ++t) residuals[t] = values[t] - mean;
}

template <class U>
void removeSlope(U* residuals, int count) {
  const U d = static_cast<U>(count - 1);
  double rampSquares = 0;
  double rampProducts = 0;
  for (int t = 0; t < count; ++t) {
    const double u = static_cast<double>(ramp(t, d));
    rampSquares += u * u;
    rampProducts += u * static_cast<double>(residuals[t]);
  }
  const U slope = static_cast<U>(rampProducts / rampSquares);
  for (int t = 0; t < count; ++t) residuals[t] -= ramp(t, d) * slope;
}

}  // namespace

template <class T, class U>
void dtrendRowsToRes(const Matrix<T>& src, int rowFirst, int rowEnd, int colFirst, int colEnd, Matrix<U>& dst,
                     int dstRow, int dstCol) {
  const int count = colEnd - colFirst;
  for (int r = rowFirst; r < rowEnd; ++r) {
    U* const residuals = dst[dstRow + r - rowFirst] + dstCol;
    removeMean(src[r] + colFirst, count, residuals);
    removeSlope(residuals, count);
  }
}

// Sums run over the differences from the first value, so that constants leave exactly 0.
template <class T>
bool detrendRow(const T* values, int count, double* residuals) {
  constexpr double kRounding = 1e-9;
  const double first = static_cast<double>(values[0]), n = count;
  double sum = 0, products = 0, rampSquares = 0;
  for (int t = 0; t < count; ++t) {
    const double u = t / (n - 1) - 0.5;
    residuals[t] = static_cast<double>(values[t]) - first;
    sum += residuals[t];
    products += u * residuals[t];
    rampSquares += u * u;
  }
  const double mean = sum / n, slope = products / rampSquares;
  double squares = 0;
  for (int t = 0; t < count; ++t) {
    residuals[t] -= mean + slope * (t / (n - 1) - 0.5);
    squares += residuals[t] * residuals[t];
  }
  const double size = kRounding * (std::abs(first) + std::abs(mean) + std::abs(slope));
  if (!(squares <= n * size * size)) return true;
  std::fill(residuals, residuals + count, 0.0);
  return false;
}

template bool detrendRow<float>(const float*, int, double*);
template bool detrendRow<double>(const double*, int, double*);
template bool detrendRow<std::uint16_t>(const std::uint16_t*, int, double*);
template void dtrendRowsToRes<float, float>(const Matrix<float>&, int, int, int, int, Matrix<float>&, int,
                                            int);

}  // namespace simo
