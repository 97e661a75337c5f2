#include "inference/contrast_split.h"

#include <Eigen/Dense>
#include <cmath>
#include <map>
#include <numeric>

#include "inference/scaled_design.h"

namespace inference {

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr double kSame = 1e-9;

// Orthonormal: what is constant within the blocks of the rows.
MatrixXd blockBasis(std::span<const int> rows, std::span<const int> blocks) {
  std::map<int, std::vector<Eigen::Index>> members;
  for (std::size_t i = 0; i < rows.size(); ++i)
    members[blocks[static_cast<std::size_t>(rows[i])]].push_back(static_cast<Eigen::Index>(i));
  MatrixXd basis =
      MatrixXd::Zero(static_cast<Eigen::Index>(rows.size()), static_cast<Eigen::Index>(members.size()));
  Eigen::Index column = 0;
  for (const auto& [block, own] : members) {
    for (const Eigen::Index i : own) basis(i, column) = 1 / std::sqrt(static_cast<double>(own.size()));
    ++column;
  }
  return basis;
}

// An orthonormal basis of what `basis`, itself orthonormal, spans beside the unit vector `without` of that
// span.
MatrixXd complement(const MatrixXd& basis, const VectorXd& without) {
  const VectorXd coordinates = basis.transpose() * without;
  const MatrixXd turned =
      coordinates.householderQr().householderQ() * MatrixXd::Identity(basis.cols(), basis.cols());
  return basis * turned.rightCols(basis.cols() - 1);
}

// Turns the basis so that what lies within `fixed` comes last; returns how many columns do not.
std::size_t putFixedLast(MatrixXd& basis, const MatrixXd& fixed) {
  const Eigen::JacobiSVD<MatrixXd> svd(basis.transpose() * fixed, Eigen::ComputeFullU);
  const auto inside = (svd.singularValues().array() > 1 - kSame).count();
  basis = basis * svd.matrixU().rowwise().reverse();
  return static_cast<std::size_t>(basis.cols() - inside);
}

std::vector<double> overAllRows(const VectorXd& own, std::span<const int> rows, std::size_t all) {
  std::vector<double> whole(all, 0.0);
  for (std::size_t i = 0; i < rows.size(); ++i)
    whole[static_cast<std::size_t>(rows[i])] = own(static_cast<Eigen::Index>(i));
  return whole;
}

}  // namespace

std::vector<int> allRows(std::size_t rows) {
  std::vector<int> all(rows);
  std::iota(all.begin(), all.end(), 0);
  return all;
}

std::optional<ContrastSplit> splitContrast(const Model& model, std::span<const int> rows,
                                           std::span<const int> fixedBlocks) {
  const ScaledDesign design(model, rows);
  if (static_cast<Eigen::Index>(rows.size()) <= design.rank() || !design.tells()) return std::nullopt;
  const VectorXd weights = design.weights();
  const VectorXd effect = weights.normalized();
  ContrastSplit split{.rows = {rows.begin(), rows.end()},
                      .effect = overAllRows(effect, rows, model.rows()),
                      .nuisances = {},
                      .moving = static_cast<std::size_t>(design.rank() - 1),
                      .scale = weights.norm(),
                      .freedom = static_cast<int>(rows.size()) - static_cast<int>(design.rank())};
  if (split.moving == 0) return split;
  MatrixXd nuisances = complement(design.basis(), effect);
  if (!fixedBlocks.empty()) split.moving = putFixedLast(nuisances, blockBasis(rows, fixedBlocks));
  for (Eigen::Index k = 0; k < nuisances.cols(); ++k)
    split.nuisances.push_back(overAllRows(nuisances.col(k), rows, model.rows()));
  return split;
}

}  // namespace inference
