#include "inference/scaled_design.h"

namespace inference {

namespace {

constexpr double kDependent = 1e-9;  // singular values below this share of the largest are none

}  // namespace

ScaledDesign::ScaledDesign(const Model& model, std::span<const int> rows) {
  const auto columns = static_cast<Eigen::Index>(model.contrast.size());
  Eigen::MatrixXd design(static_cast<Eigen::Index>(rows.size()), columns);
  for (Eigen::Index i = 0; i < design.rows(); ++i)
    for (Eigen::Index j = 0; j < columns; ++j)
      design(i, j) = model.design[static_cast<std::size_t>(rows[static_cast<std::size_t>(i)] * columns + j)];
  contrast_ = Eigen::Map<const Eigen::VectorXd>(model.contrast.data(), columns);
  for (Eigen::Index j = 0; j < columns; ++j) {
    const double length = design.col(j).norm();
    if (length == 0) continue;
    design.col(j) /= length;
    contrast_(j) /= length;
  }
  svd_.compute(design, Eigen::ComputeThinU | Eigen::ComputeThinV);
  const Eigen::VectorXd& values = svd_.singularValues();
  if (values.size() > 0 && values(0) > 0) rank_ = (values.array() > kDependent * values(0)).count();
}

bool ScaledDesign::tells() const {
  const auto known = svd_.matrixV().leftCols(rank_);
  const Eigen::VectorXd rest = contrast_ - known * (known.transpose() * contrast_);
  return contrast_.norm() > 0 && rest.norm() <= 1e-7 * contrast_.norm();
}

Eigen::VectorXd ScaledDesign::weights() const {
  const Eigen::VectorXd turned = svd_.matrixV().leftCols(rank_).transpose() * contrast_;
  return basis() * (turned.array() / svd_.singularValues().head(rank_).array()).matrix();
}

}  // namespace inference
