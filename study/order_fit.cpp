#include "study/order_fit.h"

#include <algorithm>
#include <cmath>

namespace study {
namespace {

double logDeterminant(const simo::Matrix<float>& covariance) {
  const auto at = [&](int r, int c) { return static_cast<double>(covariance[r][c]); };
  const double determinant = covariance.nRows == 1 ? at(0, 0) : at(0, 0) * at(1, 1) - at(0, 1) * at(1, 0);
  return std::log(determinant);
}

// ln|E| of orders 1 ... maxOrder of the first `series` series.
bool fitAll(const simo::FosAvg<float>& averages, int series, std::vector<double>& logError) {
  logError.clear();
  for (int order = 1; order <= averages.p; ++order) {
    simo::FosOrth<float> model(series, order);
    if (!simo::fitModel(averages, 0, model)) return false;
    logError.push_back(logDeterminant(model.errCov));
    if (!std::isfinite(logError.back())) return false;
  }
  return true;
}

}  // namespace

OrderFit::OrderFit(int maxOrder, int maxVolumes)
    : maxOrder_(maxOrder), work_(2, maxVolumes, 0, 0), averages_(2, maxOrder) {}

void OrderFit::begin() {
  averages_.clear();
  intervals_ = 0;
}

void OrderFit::addInterval(const simo::Matrix<float>& reference, const simo::Matrix<float>& voxel,
                           const VolumeRange& range) {
  simo::dtrendRowsToRes(reference, reference.rowBase, reference.rowBase + 1, range.first, range.last + 1, work_, 0, 0);
  simo::dtrendRowsToRes(voxel, voxel.rowBase, voxel.rowBase + 1, range.first, range.last + 1, work_, 1, 0);
  simo::accum_actavgs(work_, 0, 2, 0, length(range), averages_, simo::LagPairForm::kConsistent);
  ++intervals_;
}

bool OrderFit::ownFit(std::vector<double>& logVariance) { return intervals_ > 0 && fitAll(averages_, 1, logVariance); }

bool OrderFit::jointFit(std::vector<double>& logDeterminant) {
  return intervals_ > 0 && fitAll(averages_, 2, logDeterminant);
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
