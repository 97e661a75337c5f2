#include "simo/pair_fit.h"

#include <algorithm>
#include <cmath>

namespace simo {
namespace {

constexpr double kDegenerate = 1e-12;

// Whether enough of a variable is left behind others. False for NaN.
bool isLeft(double rest, double squares) {
  return rest > kDegenerate * squares;
}

double dot(const double* a, const double* b, int first, int end) {
  double sum = 0;
  for (int i = first; i < end; ++i) sum += a[i] * b[i];
  return sum;
}

double logRatio(double all, double left) {
  return std::max(0.0, std::log(all / left));
}

}  // namespace

PairFit::PairFit(int order)
    : order_(order),
      factor_(static_cast<std::size_t>(4 * order * order)),
      xLast_(static_cast<std::size_t>(2 * order)),
      yLast_(static_cast<std::size_t>(2 * order)) {}

double* PairFit::row(int i) {
  return factor_.data() + static_cast<std::ptrdiff_t>(i) * 2 * order_;
}

void PairFit::fillOwn(const LaggedMoments& own, int firstRow, int firstColumn) {
  for (int m = 1; m <= order_; ++m)
    for (int k = 1; k <= m; ++k) row(firstRow + m - 1)[firstColumn + k - 1] = own(m, k);
}

void PairFit::eliminate(double* target, int first, int end) const {
  for (int j = first; j < end; ++j) {
    const double* const of = factor_.data() + static_cast<std::ptrdiff_t>(j) * 2 * order_;
    target[j] = (target[j] - dot(target, of, 0, j)) / of[j];
  }
}

bool PairFit::factorRows(int first, int end) {
  for (int i = first; i < end; ++i) {
    double* const own = row(i);
    const double squares = own[i];
    eliminate(own, 0, i);
    const double rest = squares - dot(own, own, 0, i);
    if (!isLeft(rest, squares)) return false;
    own[i] = std::sqrt(rest);
  }
  return true;
}

// The model of one series by its own past, in the first p rows of the factor.
bool PairFit::fitAlone(const LaggedMoments& own, std::vector<double>& last, double& error) {
  fillOwn(own, 0, 0);
  if (!factorRows(0, order_)) return false;
  for (int m = 1; m <= order_; ++m) last[static_cast<std::size_t>(m - 1)] = own(0, m);
  eliminate(last.data(), 0, order_);
  error = own(0, 0) - dot(last.data(), last.data(), 0, order_);
  return isLeft(error, own(0, 0));
}

std::optional<double> PairFit::singleError(const LaggedMoments& own) {
  double error = 0;
  if (!fitAlone(own, yLast_, error)) return std::nullopt;
  return error;
}

std::optional<PairErrors> PairFit::errors(const LaggedMoments& xx, const LaggedMoments& yy,
                                          const LaggedMoments& xy) {
  const int p = order_;
  PairErrors errors;
  if (!fitAlone(xx, xLast_, errors.x) || !fitAlone(yy, yLast_, errors.y)) return std::nullopt;
  fillOwn(xx, p, p);
  for (int m = 1; m <= p; ++m) {
    for (int k = 1; k <= p; ++k) row(p + m - 1)[k - 1] = xy(m, k);
    xLast_[static_cast<std::size_t>(m - 1)] = xy(0, m);
    xLast_[static_cast<std::size_t>(p + m - 1)] = xx(0, m);
    yLast_[static_cast<std::size_t>(p + m - 1)] = xy(m, 0);
  }
  if (!factorRows(p, 2 * p)) return std::nullopt;
  eliminate(xLast_.data(), 0, 2 * p);
  eliminate(yLast_.data(), p, 2 * p);
  errors.jointX = xx(0, 0) - dot(xLast_.data(), xLast_.data(), 0, 2 * p);
  errors.jointY = errors.y - dot(yLast_.data(), yLast_.data(), p, 2 * p);
  errors.jointCross = xy(0, 0) - dot(xLast_.data(), yLast_.data(), 0, 2 * p);
  if (!isLeft(errors.jointX, xx(0, 0)) || !isLeft(errors.jointY, yy(0, 0))) return std::nullopt;
  const double yGivenX = errors.jointY - errors.jointCross * (errors.jointCross / errors.jointX);
  if (!isLeft(yGivenX, yy(0, 0))) return std::nullopt;
  errors.determinant = errors.jointX * yGivenX;
  return errors;
}

Feedback PairFit::feedback(const PairErrors& errors) {
  return {logRatio(errors.y, errors.jointY), logRatio(errors.x, errors.jointX),
          logRatio(errors.jointY, errors.determinant / errors.jointX)};
}

}  // namespace simo
