#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "connectome/conditioning.h"
#include "connectome/lag_windows.h"
#include "connectome/square_matrix.h"

namespace connectome {
namespace {

constexpr std::size_t kSamplesPerCoefficient = 10;

// One model of all nodes: vector 0 ... N - 1 the present, then the lags node by node. All of length 1, which
// no share notices.
class JointModel {
 public:
  JointModel(const NodeSeries& series, int order)
      : order_(static_cast<std::size_t>(order)), nodes_(series.nodes), windows_(series, order) {
    present_.resize(nodes_ * samples());
    past_.resize(nodes_ * order_ * samples());
    std::vector<double> rows(windows_.vectors() * samples());
    for (std::size_t node = 0; node < nodes_; ++node) take(series, node, rows);
  }

  void fit() {
    SquareMatrix gram(nodes_ * order_);
    for (std::size_t i = 0; i < gram.size; ++i)
      for (std::size_t j = 0; j <= i; ++j)
        gram.at(i, j) = gram.at(j, i) = dotProduct(past(i), past(j), samples());
    auto inverse = inverseOf(std::move(gram));
    if (!inverse) fail("the past of one region follows from that of others");
    inverse_ = std::move(*inverse);
    for (std::size_t y = 0; y < nodes_; ++y) fitNode(y);
  }

  // Extra sum of squares of y without x's lags, and what is left with them.
  [[nodiscard]] double influence(std::size_t x, std::size_t y) const {
    SquareMatrix block(order_);
    for (std::size_t i = 0; i < order_; ++i)
      for (std::size_t j = 0; j < order_; ++j) block.at(i, j) = inverse_.at(x * order_ + i, x * order_ + j);
    const auto weight = inverseOf(std::move(block));
    if (!weight) return std::nan("");
    double extra = 0;
    const double* const b = &coefficients_[(y * nodes_ + x) * order_];
    for (std::size_t i = 0; i < order_; ++i)
      for (std::size_t j = 0; j < order_; ++j) extra += b[i] * weight->at(i, j) * b[j];
    return extra / (extra + dotProduct(error(y), error(y), samples()));
  }

  [[nodiscard]] SquareMatrix precision() const {
    SquareMatrix covariance(nodes_);
    for (std::size_t i = 0; i < nodes_; ++i)
      for (std::size_t j = 0; j <= i; ++j)
        covariance.at(i, j) = covariance.at(j, i) = dotProduct(error(i), error(j), samples());
    auto inverse = inverseOf(std::move(covariance));
    if (!inverse) fail("the course of one region follows from those of others");
    return *inverse;
  }

 private:
  [[noreturn]] static void fail(const char* what) {
    throw std::runtime_error(
        fmt::format("{}, so that none is left given all others; choose other regions, or "
                    "condition on fewer",
                    what));
  }
  [[nodiscard]] std::size_t samples() const { return windows_.samples(); }
  [[nodiscard]] const double* past(std::size_t i) const { return past_.data() + i * samples(); }
  [[nodiscard]] const double* error(std::size_t i) const { return present_.data() + i * samples(); }

  void take(const NodeSeries& series, std::size_t node, std::vector<double>& rows) {
    if (!windows_.load(series.courseOf(node), rows)) fail("a region has values that are not finite");
    for (std::size_t m = 0; m <= order_; ++m) {
      const double* const from = rows.data() + m * samples();
      const double length = std::sqrt(dotProduct(from, from, samples()));
      double* const to =
          m == 0 ? present_.data() + node * samples() : past_.data() + (node * order_ + m - 1) * samples();
      std::transform(from, from + samples(), to, [length](double value) { return value / length; });
    }
  }

  // The present becomes what its model leaves.
  void fitNode(std::size_t y) {
    const std::size_t lags = nodes_ * order_;
    double* const own = present_.data() + y * samples();
    std::vector<double> products(lags), weights(lags, 0.0);
    for (std::size_t i = 0; i < lags; ++i) products[i] = dotProduct(past(i), own, samples());
    for (std::size_t i = 0; i < lags; ++i) {
      weights[i] = dotProduct(&inverse_.values[i * lags], products.data(), lags);
      for (std::size_t t = 0; t < samples(); ++t) own[t] -= weights[i] * past(i)[t];
    }
    coefficients_.insert(coefficients_.end(), weights.begin(), weights.end());
  }

  std::size_t order_, nodes_;
  LagWindows windows_;
  std::vector<double> present_, past_;
  SquareMatrix inverse_;
  std::vector<double> coefficients_;  // [target][source][lag]
};

void requireSamples(std::size_t samples, std::size_t nodes, int order) {
  const std::size_t needed = samplesForAllOthers(nodes, order);
  if (samples >= needed) return;
  throw std::runtime_error(
      fmt::format("measures given all other regions need {} volumes behind the first {} of each interval: "
                  "ten for each of the "
                  "{} x {} coefficients of a region's model; there are {}. Take fewer regions, a lower order "
                  "or more runs, or "
                  "condition on chosen series",
                  needed, order, nodes, order, samples));
}

}  // namespace

std::size_t samplesForAllOthers(std::size_t nodes, int order) {
  return kSamplesPerCoefficient * nodes * static_cast<std::size_t>(order);
}

GivenAllOthers givenAllOthers(const NodeSeries& series, int order) {
  const std::size_t samples = series.samples(order), nodes = series.nodes;
  requireSamples(samples, nodes, order);
  JointModel model(series, order);
  model.fit();
  const SquareMatrix precision = model.precision();
  GivenAllOthers result{EdgeShares(nodes), 0};
  for (std::size_t x = 0; x < nodes; ++x) {
    for (std::size_t y = 0; y < nodes; ++y) {
      if (x == y) continue;
      result.shares.influence.at(x, y) = model.influence(x, y);
      result.shares.instantaneous.at(x, y) =
          precision.at(x, y) * precision.at(x, y) / (precision.at(x, x) * precision.at(y, y));
    }
  }
  for (std::size_t x = 0; x < nodes; ++x)
    for (std::size_t y = 0; y < nodes; ++y)
      result.shares.net.at(x, y) =
          netShare(result.shares.influence.at(x, y), result.shares.influence.at(y, x));
  std::size_t intervals = 0;
  for (const SeriesRun& run : series.runs) intervals += run.intervals.size();
  result.residualFreedom = samples - nodes * static_cast<std::size_t>(order) - 2 * intervals;
  return result;
}

// A share of p of n + p directions is distributed as Beta(p / 2, n / 2).
EdgeTests testParametrically(const GivenAllOthers& fit, Measure measure, int order, double constant) {
  const EdgeMatrix& shares = fit.shares.of(measure);
  EdgeTests tests(shares.nodes);
  const bool isDirected = measure == Measure::kInfluence;
  const double freedom =
      static_cast<double>(fit.residualFreedom) - (isDirected ? 0 : static_cast<double>(shares.nodes) - 1);
  const double directions = isDirected ? order : 1;
  for (std::size_t i = 0; measure != Measure::kNet && i < shares.values.size(); ++i)
    tests.p.values[i] = incompleteBeta(1 - shares.values[i], freedom / 2, directions / 2);
  adjustEdges(measure, constant, tests);
  for (std::size_t i = 0; i < tests.p.values.size(); ++i)
    if (!std::isnan(tests.p.values[i]))
      tests.pFamilyWise.values[i] = std::min(1.0, tests.p.values[i] * static_cast<double>(tests.edges));
  return tests;
}

}  // namespace connectome
