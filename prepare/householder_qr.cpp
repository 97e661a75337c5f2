#include "prepare/householder_qr.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace study {

HouseholderQr::HouseholderQr(std::vector<std::vector<double>> columns, double relativeTolerance)
    : columns_(std::move(columns)), pivots_(columns_.size()) {
  std::iota(pivots_.begin(), pivots_.end(), std::size_t{0});
  const std::size_t rows = columns_.empty() ? 0 : columns_[0].size();
  const std::size_t steps = std::min(rows, columns_.size());
  double largest = 0;
  for (std::size_t j = 0; j < columns_.size(); ++j) largest = std::max(largest, remainingNorm(j, 0));
  for (std::size_t step = 0; step < steps; ++step) {
    bringLargestForward(step);
    if (!(remainingNorm(step, step) > relativeTolerance * largest)) break;
    reflect(step);
    ++rank_;
  }
}

double HouseholderQr::remainingNorm(std::size_t column, std::size_t step) const {
  double sum = 0;
  for (std::size_t i = step; i < columns_[column].size(); ++i)
    sum += columns_[column][i] * columns_[column][i];
  return std::sqrt(sum);
}

void HouseholderQr::bringLargestForward(std::size_t step) {
  std::size_t best = step;
  double bestNorm = remainingNorm(step, step);
  for (std::size_t j = step + 1; j < columns_.size(); ++j) {
    const double norm = remainingNorm(j, step);
    if (norm > bestNorm) best = j, bestNorm = norm;
  }
  std::swap(columns_[step], columns_[best]);
  std::swap(pivots_[step], pivots_[best]);
}

// Replaces rows step ... of the column by the unit vector of its reflector, and applies it to the
// columns behind.
void HouseholderQr::reflect(std::size_t step) {
  std::vector<double>& column = columns_[step];
  const double norm = remainingNorm(step, step);
  const double alpha = column[step] > 0 ? -norm : norm;  // the sign that avoids cancellation
  diagonal_.push_back(alpha);
  column[step] -= alpha;
  const double scale = 1.0 / remainingNorm(step, step);
  for (std::size_t i = step; i < column.size(); ++i) column[i] *= scale;
  for (std::size_t j = step + 1; j < columns_.size(); ++j) applyReflector(step, columns_[j]);
}

void HouseholderQr::applyReflector(std::size_t step, std::vector<double>& column) const {
  const std::vector<double>& reflector = columns_[step];
  double product = 0;
  for (std::size_t i = step; i < column.size(); ++i) product += reflector[i] * column[i];
  for (std::size_t i = step; i < column.size(); ++i) column[i] -= 2 * product * reflector[i];
}

std::vector<double> HouseholderQr::q(std::size_t j) const {
  std::vector<double> column(columns_[j].size(), 0.0);
  column[j] = 1;
  for (std::size_t step = rank_; step-- > 0;) applyReflector(step, column);
  return column;
}

}  // namespace study
