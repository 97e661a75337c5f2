#include "study/order_fit.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace study {
namespace {

std::span<double> residualsOf(const simo::Matrix<float>& series, const VolumeRange& range,
                              std::vector<double>& residuals) {
  const float* const first = series[series.rowBase] + range.first;
  (void)simo::detrendRow(first, length(range), residuals.data());  // nothing left: no model fits
  return {residuals.data(), static_cast<std::size_t>(length(range))};
}

}  // namespace

OrderFit::OrderFit(int maxOrder, int maxVolumes)
    : maxOrder_(maxOrder), reference_(maxOrder), voxel_(maxOrder), cross_(maxOrder) {
  for (auto& residuals : residuals_) residuals.resize(static_cast<std::size_t>(maxVolumes));
}

void OrderFit::begin() {
  for (simo::LaggedMoments* const moments : {&reference_, &voxel_, &cross_}) moments->clear();
  samples_ = 0;
}

void OrderFit::addInterval(const simo::Matrix<float>& reference, const simo::Matrix<float>& voxel,
                           const VolumeRange& range) {
  const auto x = residualsOf(reference, range, residuals_[0]);
  const auto y = residualsOf(voxel, range, residuals_[1]);
  reference_.add(x.data(), x.data(), length(range));
  voxel_.add(y.data(), y.data(), length(range));
  cross_.add(x.data(), y.data(), length(range));
  samples_ += std::max(0, length(range) - maxOrder_);
}

bool OrderFit::ownFit(std::vector<double>& logVariance) {
  logVariance.clear();
  for (int order = 1; order <= maxOrder_; ++order) {
    const auto error = simo::PairFit(order).singleError(reference_);
    if (!error) return false;
    logVariance.push_back(std::log(*error / samples_));
  }
  return true;
}

bool OrderFit::jointFit(std::vector<double>& logDeterminant) {
  logDeterminant.clear();
  for (int order = 1; order <= maxOrder_; ++order) {
    const auto errors = simo::PairFit(order).errors(reference_, voxel_, cross_);
    if (!errors) return false;
    logDeterminant.push_back(std::log(errors->determinant) - 2 * std::log(samples_));
  }
  return true;
}

Criteria criteriaOf(const std::vector<double>& logError, int parametersPerOrder, int samples) {
  const double n = samples;
  Criteria criteria;
  for (std::size_t i = 0; i < logError.size(); ++i) {
    const double perSample = static_cast<double>(parametersPerOrder) * static_cast<double>(i + 1) / n;
    criteria.bic.push_back(logError[i] + std::log(n) * perSample);
    criteria.aic.push_back(logError[i] + 2 * perSample);
    criteria.hqc.push_back(logError[i] + 2 * std::log(std::log(n)) * perSample);
  }
  return criteria;
}

void accumulate(Criteria& sum, const Criteria& more, double weight) {
  const auto add = [weight](std::vector<double>& to, const std::vector<double>& from) {
    to.resize(from.size(), 0.0);
    for (std::size_t i = 0; i < from.size(); ++i) to[i] += weight * from[i];
  };
  add(sum.bic, more.bic);
  add(sum.aic, more.aic);
  add(sum.hqc, more.hqc);
}

int bestOrder(const std::vector<double>& curve) {
  if (curve.empty()) return 1;
  return static_cast<int>(std::min_element(curve.begin(), curve.end()) - curve.begin()) + 1;
}

}  // namespace study
