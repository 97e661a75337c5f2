#include "simo/normal_quantile.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace simo {
namespace {

// A ratio of polynomials, coefficients of ascending powers.
struct Ratio {
  std::array<double, 8> above, below;

  [[nodiscard]] double at(double x) const { return polynomial(above, x) / polynomial(below, x); }

 private:
  static double polynomial(const std::array<double, 8>& coefficients, double x) {
    double sum = 0;
    for (std::size_t i = coefficients.size(); i-- > 0;) sum = sum * x + coefficients[i];
    return sum;
  }
};

constexpr Ratio kCentre = {
    {3.3871328727963666080, 133.14166789178437745, 1971.5909503065514427, 13731.693765509461125,
     45921.953931549871457, 67265.770927008700853, 33430.575583588128105, 2509.0809287301226727},
    {1.0, 42.313330701600911252, 687.18700749205790830, 5394.1960214247511077, 21213.794301586595867,
     39307.895800092710610, 28729.085735721942674, 5226.4952788528545610}};

constexpr Ratio kTail = {
    {1.42343711074968357734, 4.63033784615654529590, 5.76949722146069140550, 3.64784832476320460504,
     1.27045825245236838258, 0.241780725177450611770, 0.0227238449892691845833, 7.74545014278341407640e-4},
    {1.0, 2.05319162663775882187, 1.67638483018380384940, 0.689767334985100004550, 0.148103976427480074590,
     0.0151986665636164571966, 5.47593808499534494600e-4, 1.05075007164441684324e-9}};

constexpr Ratio kFarTail = {{6.65790464350110377720, 5.46378491116411436990, 1.78482653991729133580,
                             0.296560571828504891230, 0.0265321895265761230930, 1.24266094738807843860e-3,
                             2.71155556874348757815e-5, 2.01033439929228813265e-7},
                            {1.0, 0.599832206555887937690, 0.136929880922735805310, 0.0148753612908506148525,
                             7.86869131145613259100e-4, 1.84631831751005468180e-5, 1.42151175831644588870e-7,
                             2.04426310338993978564e-15}};

}  // namespace

double normalQuantile(double p) {
  if (!(p > 0) || !(p < 1)) return std::nan("");
  const double fromMiddle = p - 0.5;
  if (std::fabs(fromMiddle) <= 0.425) return fromMiddle * kCentre.at(0.180625 - fromMiddle * fromMiddle);
  const double distance = std::sqrt(-std::log(fromMiddle < 0 ? p : 1 - p));
  const double z = distance <= 5 ? kTail.at(distance - 1.6) : kFarTail.at(distance - 5);
  return fromMiddle < 0 ? -z : z;
}

}  // namespace simo
