// The numerics of a design: its rank, what it spans, and whether it tells a contrast.
#ifndef TAVMAP_INFERENCE_SCALED_DESIGN_H
#define TAVMAP_INFERENCE_SCALED_DESIGN_H

#include <Eigen/Dense>
#include <span>

#include "inference/model.h"

namespace inference {

// Some rows of a design, its columns brought to unit length first, so that the unit of a covariate decides
// nothing.
class ScaledDesign {
 public:
  ScaledDesign(const Model& model, std::span<const int> rows);

  [[nodiscard]] Eigen::Index rank() const { return rank_; }
  [[nodiscard]] bool tells() const;  // the contrast can be estimated
  // Orthonormal, rows x rank: what the columns span.
  [[nodiscard]] Eigen::MatrixXd basis() const { return svd_.matrixU().leftCols(rank_); }
  // Per row: the contrast's estimate is their product with the values.
  [[nodiscard]] Eigen::VectorXd weights() const;

 private:
  Eigen::VectorXd contrast_;  // of the scaled columns
  Eigen::JacobiSVD<Eigen::MatrixXd> svd_;
  Eigen::Index rank_ = 0;
};

}  // namespace inference

#endif
