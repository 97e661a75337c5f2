#include "prepare/regress.h"

#include <algorithm>
#include <cmath>

#include "prepare/householder_qr.h"

namespace study {
namespace {

using Columns = std::vector<std::vector<double>>;

std::vector<std::size_t> indicesOf(const std::vector<bool>& used, std::size_t volumes) {
  std::vector<std::size_t> indices;
  for (std::size_t v = 0; v < volumes; ++v) {
    if (used.empty() || used[v]) indices.push_back(v);
  }
  return indices;
}

// Centred over the volumes of the fit and scaled to unit length there, so that the rank decision
// does not depend on a column's units; all volumes are kept.
Columns standardised(const Columns& columns, const std::vector<std::size_t>& fit) {
  Columns result = columns;
  for (std::vector<double>& column : result) {
    double mean = 0, squares = 0;
    for (const std::size_t v : fit) mean += column[v] / static_cast<double>(fit.size());
    for (double& value : column) value -= mean;
    for (const std::size_t v : fit) squares += column[v] * column[v];
    // A constant column has no direction of its own beside the mean.
    const double scale = squares > 1e-24 * (mean * mean + 1e-300) ? 1 / std::sqrt(squares) : 0;
    for (double& value : column) value *= scale;
  }
  return result;
}

Columns restricted(const Columns& columns, const std::vector<std::size_t>& fit) {
  Columns result;
  for (const std::vector<double>& column : columns) {
    std::vector<double>& rows = result.emplace_back();
    for (const std::size_t v : fit) rows.push_back(column[v]);
  }
  return result;
}

// One row of (columns R^-1): the basis at a volume that took no part in the fit.
void extendBasis(const Columns& columns, const HouseholderQr& qr, std::size_t volume, std::size_t volumes,
                 std::vector<double>& basis) {
  for (std::size_t j = 0; j < qr.rank(); ++j) {
    double value = columns[qr.pivot(j)][volume];
    for (std::size_t i = 0; i < j; ++i) value -= basis[i * volumes + volume] * qr.r(i, j);
    basis[j * volumes + volume] = value / qr.r(j, j);
  }
}

bool allFinite(const float* course, std::size_t volumes) {
  return std::all_of(course, course + volumes, [](float value) { return std::isfinite(value); });
}

}  // namespace

ConfoundRegression::ConfoundRegression(const Columns& columns, const std::vector<bool>& used) {
  if (columns.empty()) return;
  const std::size_t volumes = columns[0].size();
  volumes_ = static_cast<int>(volumes);
  const std::vector<std::size_t> fit = indicesOf(used, volumes);
  if (fit.size() < 2) return;
  const Columns design = standardised(columns, fit);
  const HouseholderQr qr(restricted(design, fit));
  const std::size_t rank = qr.rank();
  rank_ = static_cast<int>(rank);
  basis_.assign(rank * volumes, 0.0);
  fitBasis_.assign(rank * volumes, 0.0);
  weights_.assign(rank, 0.0);
  for (std::size_t v = 0; v < volumes; ++v) extendBasis(design, qr, v, volumes, basis_);
  for (std::size_t j = 0; j < rank; ++j) {
    const std::vector<double> q = qr.q(j);  // more accurate than R^-1 where it exists
    for (std::size_t i = 0; i < fit.size(); ++i) {
      basis_[j * volumes + fit[i]] = fitBasis_[j * volumes + fit[i]] = q[i];
    }
  }
}

void ConfoundRegression::remove(float* course) {
  const std::size_t volumes = static_cast<std::size_t>(volumes_), rank = static_cast<std::size_t>(rank_);
  if (rank == 0 || !allFinite(course, volumes)) return;
  for (std::size_t j = 0; j < rank; ++j) {
    const double* row = fitBasis_.data() + j * volumes;
    double weight = 0;
    for (std::size_t v = 0; v < volumes; ++v) weight += row[v] * static_cast<double>(course[v]);
    weights_[j] = weight;
  }
  for (std::size_t v = 0; v < volumes; ++v) {
    double value = static_cast<double>(course[v]);
    for (std::size_t j = 0; j < rank; ++j) value -= weights_[j] * basis_[j * volumes + v];
    course[v] = static_cast<float>(value);
  }
}

}  // namespace study
