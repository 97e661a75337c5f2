#include "suitability/robust.h"

#include <algorithm>
#include <cmath>

namespace suitability {

double quantile(std::vector<double> values, double share) {
  const auto last = static_cast<double>(values.size() - 1);
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(std::lround(share * last));
  std::nth_element(values.begin(), at, values.end());
  return *at;
}

double median(const std::vector<double>& values) {
  return quantile(values, 0.5);
}

double robustSd(const std::vector<double>& values) {
  const double centre = median(values);
  std::vector<double> distances;
  distances.reserve(values.size());
  for (const double value : values) distances.push_back(std::abs(value - centre));
  return 1.4826 * median(distances);
}

}  // namespace suitability
