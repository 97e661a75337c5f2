#include <cmath>

#include "connectome/conditioning.h"

namespace connectome {
namespace {

// One term of the continued fraction, from its coefficient: by Lentz, whose denominators never vanish.
struct Lentz {
  double c = 1, d = 0, value = 1;
  static double away(double x) { return std::abs(x) < 1e-300 ? 1e-300 : x; }
  double take(double coefficient) {
    d = 1 / away(1 + coefficient * d);
    c = away(1 + coefficient / c);
    value *= c * d;
    return c * d;
  }
};

double continuedFraction(double x, double a, double b) {
  Lentz fraction;
  fraction.d = 1 / Lentz::away(1 - (a + b) * x / (a + 1));
  fraction.value = fraction.d;
  for (int m = 1; m < 1000; ++m) {
    fraction.take(m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m)));
    const double change = fraction.take(-(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1)));
    if (std::abs(change - 1) < 1e-15) break;
  }
  return fraction.value;
}

}  // namespace

double incompleteBeta(double x, double a, double b) {
  if (!(x > 0)) return std::isnan(x) ? x : 0;
  if (x >= 1) return 1;
  const double front =
      std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) + a * std::log(x) + b * std::log1p(-x));
  if (x < (a + 1) / (a + b + 2)) return front * continuedFraction(x, a, b) / a;
  return 1 - front * continuedFraction(1 - x, b, a) / b;
}

}  // namespace connectome
