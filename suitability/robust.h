// Centre and spread that a few wild values do not move.
#ifndef TAVMAP_SUITABILITY_ROBUST_H
#define TAVMAP_SUITABILITY_ROBUST_H

#include <vector>

namespace suitability {

// The value of the rank nearest to a share 0 ... 1 of the way up; of values without NaN, at least one. Halves
// round up.
[[nodiscard]] double quantile(std::vector<double> values, double share);
[[nodiscard]] double median(const std::vector<double>& values);

// 1.4826 times the median distance from the median: the standard deviation of normal values (Hampel 1974,
// Journal of the American Statistical Association 69, 383-393, doi:10.1080/01621459.1974.10482962).
[[nodiscard]] double robustSd(const std::vector<double>& values);

}  // namespace suitability

#endif
