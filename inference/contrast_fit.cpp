#include "inference/contrast_fit.h"

#include <cmath>

namespace inference {

namespace {

constexpr double kNoVariation = 1e-12;  // of the squares, where floats say no more

double product(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

void keepRows(const std::vector<int>& rows, std::vector<double>& values) {
  std::size_t next = 0;
  for (std::size_t row = 0; row < values.size(); ++row) {
    if (next < rows.size() && rows[next] == static_cast<int>(row)) {
      ++next;
    } else {
      values[row] = 0;
    }
  }
}

// The squares that remain without the part along `direction`, which is `along`.
double squaresBeside(const std::vector<double>& values, const std::vector<double>& direction, double along) {
  double sum = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double rest = values[i] - along * direction[i];
    sum += rest * rest;
  }
  return sum;
}

}  // namespace

std::optional<ContrastFit> fitContrast(const ContrastSplit& split, std::vector<double>& values) {
  keepRows(split.rows, values);
  const double all = product(values, values);
  for (const auto& nuisance : split.nuisances) {
    const double along = product(nuisance, values);
    for (std::size_t i = 0; i < values.size(); ++i) values[i] -= along * nuisance[i];
  }
  const double along = product(split.effect, values);
  const double rest = squaresBeside(values, split.effect, along);
  if (!(rest > kNoVariation * all)) return std::nullopt;
  return ContrastFit{along * split.scale, along * std::sqrt(split.freedom / rest),
                     std::sqrt(product(values, values))};
}

}  // namespace inference
