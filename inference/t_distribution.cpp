#include "inference/t_distribution.h"

#include <algorithm>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>

namespace inference {

namespace {

// Doubles are exact enough; the library's default, long doubles within, takes three times as long.
using Plain = boost::math::policies::policy<boost::math::policies::promote_double<false>>;
using Normal = boost::math::normal_distribution<double, Plain>;
using Student = boost::math::students_t_distribution<double, Plain>;

constexpr double kSmallestP = 1e-300;
constexpr double kLeastRest = 0x1p-24;  // of 1 - r r, as floats tell it from 0

}  // namespace

double zOfT(double t, int freedom) {
  if (std::isnan(t)) return t;
  const Student student(freedom);
  const double p = std::isinf(t) ? 0 : boost::math::cdf(boost::math::complement(student, std::abs(t)));
  const Normal normal;
  return std::copysign(boost::math::quantile(boost::math::complement(normal, std::max(p, kSmallestP))), t);
}

double tOfZ(double z, int freedom) {
  if (!std::isfinite(z)) return z;
  const Normal normal;
  const double p = boost::math::cdf(boost::math::complement(normal, std::abs(z)));
  const Student student(freedom);
  return std::copysign(boost::math::quantile(boost::math::complement(student, std::max(p, kSmallestP))), z);
}

double tOfCorrelation(double r, int freedom) {
  return r * std::sqrt(freedom / std::max(1 - r * r, kLeastRest));
}

double correlationOfT(double t, int freedom) {
  return t / std::sqrt(freedom + t * t);
}

}  // namespace inference
