#include "connectome/lag_basis.h"

#include <cmath>

namespace connectome {
namespace {

constexpr double kDegenerate = 1e-12;
// Of what is given, a direction counts as new above this.
constexpr double kNewDirection = 1e-10;

// What is left of the vector's square behind `directions` rows.
double leaveOrthogonal(const double* rows, std::size_t directions, std::size_t count, double* vector) {
  for (std::size_t i = 0; i < directions; ++i) {
    const double* const direction = rows + i * count;
    const double weight = dotProduct(direction, vector, count);
    for (std::size_t t = 0; t < count; ++t) vector[t] -= weight * direction[t];
  }
  return dotProduct(vector, vector, count);
}

void divide(double* vector, std::size_t count, double by) {
  for (std::size_t t = 0; t < count; ++t) vector[t] *= 1 / by;
}

}  // namespace

LagBasis::LagBasis(const NodeSeries& series, int order, Given given) : windows_(series, order) {
  if (given != Given::kNothing) addGiven(series, given);
}

// Lags of every given series as rows, those that are new alone.
void LagBasis::addGiven(const NodeSeries& series, Given given) {
  const std::size_t count = samples();
  std::vector<double> rows(vectors() * count);
  for (std::size_t i = 0; i < series.given; ++i) {
    if (!windows_.load(series.givenCourse(i), rows)) continue;
    for (std::size_t lag = given == Given::kPresent ? 0 : 1; lag < vectors(); ++lag) {
      double* const vector = rows.data() + lag * count;
      const double squares = dotProduct(vector, vector, count);
      (void)leaveOrthogonal(given_.data(), givenRank(), count, vector);
      const double rest = leaveOrthogonal(given_.data(), givenRank(), count, vector);
      if (!(rest > kNewDirection * squares)) continue;
      divide(vector, count, std::sqrt(rest));
      given_.insert(given_.end(), vector, vector + count);
    }
  }
}

bool LagBasis::of(const std::vector<const float*>& course, std::span<double> basis) {
  if (!windows_.load(course, basis)) return false;
  const std::size_t count = samples();
  // The past first, then the present; a second pass where much was lost keeps vectors orthogonal.
  for (std::size_t step = 1; step <= vectors(); ++step) {
    double* const vector = basis.data() + step % vectors() * count;
    const double squares = dotProduct(vector, vector, count);
    double rest = squares;
    for (int pass = 0; pass < 2 && (pass == 0 || rest < squares / 4); ++pass) {
      (void)leaveOrthogonal(given_.data(), givenRank(), count, vector);
      rest = leaveOrthogonal(basis.data() + count, step - 1, count, vector);
    }
    if (!(rest > kDegenerate * squares)) return false;
    divide(vector, count, std::sqrt(rest));
  }
  return true;
}

}  // namespace connectome
