// The quantiles of the normal distribution.
#ifndef TAVMAP_SIMO_NORMAL_QUANTILE_H
#define TAVMAP_SIMO_NORMAL_QUANTILE_H

namespace simo {

// z with the probability p of a standard normal value below it; 0 < p < 1, else NaN. Precise to about 1 part
// in 10^16 in both tails (Wichura 1988, Algorithm AS 241, Applied Statistics 37, 477-484,
// doi:10.2307/2347330).
[[nodiscard]] double normalQuantile(double p);

}  // namespace simo

#endif
