#include "connectome/lag_windows.h"

#include <algorithm>
#include <cmath>

#include "simo/detrend.h"

namespace connectome {

double dotProduct(const double* a, const double* b, std::size_t count) {
  double sums[4] = {0, 0, 0, 0};  // one would wait for itself at every term
  std::size_t t = 0;
  for (; t + 4 <= count; t += 4)
    for (std::size_t s = 0; s < 4; ++s) sums[s] += a[t + s] * b[t + s];
  for (; t < count; ++t) sums[0] += a[t] * b[t];
  return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

LagWindows::LagWindows(const NodeSeries& series, int order) : order_(order) {
  int longest = 0;
  for (std::size_t run = 0; run < series.runs.size(); ++run) {
    for (const Interval& interval : series.runs[run].intervals) {
      if (interval.length <= std::max(order, 1)) continue;
      segments_.push_back({run, interval.first, interval.length});
      samples_ += static_cast<std::size_t>(interval.length - order);
      longest = std::max(longest, interval.length);
    }
  }
  residuals_.resize(static_cast<std::size_t>(longest));
}

bool LagWindows::load(const std::vector<const float*>& course, std::span<double> rows) {
  std::size_t at = 0;
  for (const Segment& segment : segments_) {
    // Without anything left the rows have no length, which fits find degenerate.
    (void)simo::detrendRow(course[segment.run] + segment.first, segment.length, residuals_.data());
    const auto count = static_cast<std::size_t>(segment.length - order_);
    for (std::size_t m = 0; m < vectors(); ++m)
      std::copy_n(residuals_.data() + (vectors() - 1 - m), count, rows.data() + m * samples_ + at);
    at += count;
  }
  const std::size_t last = (vectors() - 1) * samples_;
  return samples_ > 0 && std::isfinite(dotProduct(rows.data(), rows.data() + last, samples_));
}

}  // namespace connectome
