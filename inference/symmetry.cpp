#include "inference/symmetry.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "inference/complete_sample.h"
#include "inference/contrast_split.h"
#include "inference/draws.h"
#include "inference/scaled_design.h"

namespace inference {

namespace {

using Eigen::MatrixXf;

constexpr int kFlips = 499;

constexpr Eigen::Index kRegions = 10;

struct Means {
  double all, regional;
};

// Columns lose what the basis spans, and have unit length then; those without length become 0.
void leaveResiduals(const MatrixXf& basis, MatrixXf& values) {
  const Eigen::RowVectorXf before = values.colwise().norm();
  values -= basis * (basis.transpose() * values).eval();
  for (Eigen::Index j = 0; j < values.cols(); ++j) {
    const float length = values.col(j).norm();
    values.col(j) *= length > 1e-6F * before(j) ? 1 / length : 0;
  }
}

Means meansOf(const MatrixXf& residuals) {
  const Eigen::ArrayXd skewness = std::sqrt(static_cast<double>(residuals.rows())) *
                                  residuals.array().cube().colwise().sum().transpose().cast<double>();
  const Eigen::Index places = skewness.size(), regions = std::min(kRegions, places);
  double squares = 0;
  for (Eigen::Index i = 0; i < regions; ++i) {
    const Eigen::Index begin = i * places / regions, end = (i + 1) * places / regions;
    const double mean = skewness.segment(begin, end - begin).mean();
    squares += mean * mean;
  }
  return {skewness.mean(), std::sqrt(squares / static_cast<double>(regions))};
}

// Flipped residuals are fitted a second time, which takes from an outlier what the first time took: its share
// of the length, to the power of 3, by what is left of the length, to the power of 3/2.
Means flippedMeans(const MatrixXf& residuals, const MatrixXf& basis, Draws draws) {
  MatrixXf flipped = residuals;
  for (Eigen::Index i = 0; i < flipped.rows(); ++i)
    if (draws.coin()) flipped.row(i) *= -1;
  leaveResiduals(basis, flipped);
  Means means = meansOf(flipped);
  const auto rows = static_cast<double>(residuals.rows());
  means.regional *= std::pow(rows / (rows - static_cast<double>(basis.cols())), 1.5);
  return means;
}

}  // namespace

Symmetry checkSymmetry(const Model& model, const Values& values, std::uint32_t seed) {
  MatrixXf residuals = completeSample(values);
  if (residuals.cols() == 0) return {};
  const MatrixXf basis = ScaledDesign(model, allRows(model.rows())).basis().cast<float>();
  leaveResiduals(basis, residuals);
  const Means own = meansOf(residuals);
  Symmetry found{.meanSkewness = own.all, .regionalSkewness = own.regional, .expected = 0, .p = 1};
  int reached = 1;
  for (int i = 1; i <= kFlips; ++i) {
    const Means flipped = flippedMeans(residuals, basis, Draws(~seed, static_cast<std::size_t>(i)));
    reached += flipped.regional >= own.regional * (1 - 1e-5) ? 1 : 0;
    found.expected += flipped.regional / kFlips;
  }
  found.p = static_cast<double>(reached) / (kFlips + 1);
  return found;
}

}  // namespace inference
