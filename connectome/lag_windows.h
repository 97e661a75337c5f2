// A series and its past side by side, over the samples of a least-squares fit.
#ifndef TAVMAP_CONNECTOME_LAG_WINDOWS_H
#define TAVMAP_CONNECTOME_LAG_WINDOWS_H

#include <cstddef>
#include <span>
#include <vector>

#include "connectome/node_series.h"

namespace connectome {

// Samples of a model of order p: the values p, p + 1, ... of every interval, whose whole past lies in it.
// Each interval is detrended by itself.
class LagWindows {
 public:
  // series: whose intervals count; may go afterwards. Intervals that are not longer than the order have none.
  LagWindows(const NodeSeries& series, int order);

  [[nodiscard]] std::size_t samples() const { return samples_; }
  [[nodiscard]] std::size_t vectors() const { return static_cast<std::size_t>(order_) + 1; }

  // course: per run, the values of all volumes. rows: vectors() rows of samples() values; row m has the
  // values m samples ago. False when one is not finite, or when there is no sample.
  [[nodiscard]] bool load(const std::vector<const float*>& course, std::span<double> rows);

 private:
  struct Segment {
    std::size_t run;
    int first, length;
  };
  int order_;
  std::size_t samples_ = 0;
  std::vector<Segment> segments_;
  std::vector<double> residuals_;  // of one interval
};

// Sum of products, in four partial sums.
[[nodiscard]] double dotProduct(const double* a, const double* b, std::size_t count);

}  // namespace connectome

#endif
