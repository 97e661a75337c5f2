// How well models of growing order describe one pair of series: the logarithms of their
// prediction-error variances, and the criteria that weigh them against the number of parameters.
#ifndef TAVMAP_STUDY_ORDER_FIT_H
#define TAVMAP_STUDY_ORDER_FIT_H

#include <vector>

#include "request/volume_ranges.h"
#include "tav/tav.h"

namespace study {

// Fits orders 1 ... maxOrder by least squares to the intervals of a reference and a voxel, each
// interval detrended by itself. All orders are fitted to the same samples, those behind the first
// maxOrder volumes of each interval.
class OrderFit {
 public:
  OrderFit(int maxOrder, int maxVolumes);

  void begin();
  // Adds an interval of both series, counted from 1. Row `row` of each matrix, columns = volumes.
  void addInterval(const simo::Matrix<float>& reference, const simo::Matrix<float>& voxel,
                   const VolumeRange& range);

  // ln of the error variance of the reference alone, and ln of the determinant of the joint error
  // covariance, one value per order. False when a model is degenerate or not finite.
  [[nodiscard]] bool ownFit(std::vector<double>& logVariance);
  [[nodiscard]] bool jointFit(std::vector<double>& logDeterminant);

 private:
  int maxOrder_;
  int samples_ = 0;
  std::vector<double> residuals_[2];  // of one interval: reference, voxel
  simo::LaggedMoments reference_, voxel_, cross_;
};

// Information criteria per sample, ln|E| + penalty(n) k / n, for k parameters and n samples:
// Schwarz 1978 (ln n), Akaike 1974 (2), Hannan & Quinn 1979 (2 ln ln n).
struct Criteria {
  std::vector<double> bic, aic, hqc;  // index 0 is order 1
};
// parametersPerOrder: 1 for a single series, 4 for two.
[[nodiscard]] Criteria criteriaOf(const std::vector<double>& logError, int parametersPerOrder, int samples);

// Adds weight times each curve of `more`; an empty sum takes its shape.
void accumulate(Criteria& sum, const Criteria& more, double weight);

// The order (from 1) at the curve's minimum, the lowest of equals; 1 for an empty curve.
[[nodiscard]] int bestOrder(const std::vector<double>& curve);

}  // namespace study

#endif
