// Measures of long simulated processes against the feedback that their coefficients imply.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <ostream>
#include <string>

#include "tests/simo/least_squares.h"
#include "tests/simo/measured.h"
#include "tests/simo/series.h"

namespace {

using test::Dense;

// A stationary VAR(1) of two series.
struct Process {
  std::string name;
  Dense a;
  Dense sigma;
};

void PrintTo(const Process& process, std::ostream* out) {
  *out << process.name;
}

const Process kWhite{"Independent", Dense(2, 2, {0, 0, 0, 0}), Dense(2, 2, {1, 0, 0, 2})};
const Process kDriven{"XDrivesY", Dense(2, 2, {0, 0, 0.7, 0}), Dense(2, 2, {1, 0, 0, 1})};
const Process kBack{"YDrivesX", Dense(2, 2, {0.4, 0.5, 0, 0.6}), Dense(2, 2, {1, 0, 0, 1})};
const Process kInstant{"InstantOnly", Dense(2, 2, {0.5, 0, 0, 0.3}), Dense(2, 2, {1, 0.6, 0.6, 1})};
const Process kBoth{"EverythingAtOnce", Dense(2, 2, {0.5, 0.3, -0.4, 0.6}), Dense(2, 2, {1, 0.5, 0.5, 2})};

// Autocovariances G(0) ... G(last) of a process: G(0) = A G(0) A^T + S by doubling, G(k) = A G(k-1).
std::vector<Dense> autocovariances(const Process& process, int last) {
  Dense total = process.sigma;
  Dense power = process.a;
  for (int doubling = 0; doubling < 30; ++doubling) {
    const Dense more = product(product(power, total), transposed(power));
    for (std::size_t e = 0; e < 4; ++e) total.values[e] += more.values[e];
    power = product(power, power);
  }
  std::vector<Dense> g{total};
  for (int k = 1; k <= last; ++k) g.push_back(product(process.a, g.back()));
  return g;
}

// Error variance of the best linear prediction of one series from its own last p values
// (Levinson-Durbin recursion).
double ownPastError(const std::vector<Dense>& g, std::size_t series, int p) {
  std::vector<double> phi;
  double error = g[0](series, series);
  for (int m = 1; m <= p; ++m) {
    double partial = g[static_cast<std::size_t>(m)](series, series);
    for (std::size_t j = 0; j < phi.size(); ++j)
      partial -= phi[j] * g[static_cast<std::size_t>(m) - 1 - j](series, series);
    partial /= error;
    std::vector<double> next(phi);
    for (std::size_t j = 0; j < phi.size(); ++j) next[j] -= partial * phi[phi.size() - 1 - j];
    next.push_back(partial);
    phi = next;
    error *= 1 - partial * partial;
  }
  return error;
}

// Error variance from the whole past: exp of the mean log spectrum (Kolmogorov's formula).
double wholePastError(const Process& process, std::size_t series) {
  using Complex = std::complex<double>;
  const int points = 4096;
  double logSum = 0;
  for (int w = 0; w < points; ++w) {
    const Complex z = std::polar(1.0, -2 * std::numbers::pi * w / points);
    const Complex b[2][2] = {{1.0 - process.a(0, 0) * z, -process.a(0, 1) * z},
                             {-process.a(1, 0) * z, 1.0 - process.a(1, 1) * z}};
    const Complex det = b[0][0] * b[1][1] - b[0][1] * b[1][0];
    const Complex h[2] = {series == 0 ? b[1][1] / det : -b[1][0] / det,
                          series == 0 ? -b[0][1] / det : b[0][0] / det};
    Complex power = 0;
    for (std::size_t i = 0; i < 2; ++i)
      for (std::size_t j = 0; j < 2; ++j) power += h[i] * process.sigma(i, j) * std::conj(h[j]);
    logSum += std::log(power.real());
  }
  return std::exp(logSum / points);
}

double instantaneous(const Process& process) {
  const Dense& s = process.sigma;
  return std::log(s(0, 0) * s(1, 1) / (s(0, 0) * s(1, 1) - s(0, 1) * s(1, 0)));
}

// What a model of order p measures on infinitely many points.
test::Feedback feedbackOfOrder(const Process& process, int p) {
  const std::vector<Dense> g = autocovariances(process, p);
  return {std::log(ownPastError(g, 1, p) / process.sigma(1, 1)),
          std::log(ownPastError(g, 0, p) / process.sigma(0, 0)), instantaneous(process)};
}

test::Feedback feedbackOfWholePast(const Process& process) {
  return {std::log(wholePastError(process, 1) / process.sigma(1, 1)),
          std::log(wholePastError(process, 0) / process.sigma(0, 0)), instantaneous(process)};
}

// N times a measure is about non-central chi-squared with p degrees of freedom and non-centrality
// N F: mean F + p / N, variance 4 F / N + 2 p / N^2. Five standard deviations.
void expectMeasure(float measured, double expected, int p, double length) {
  const double deviation = std::sqrt(4 * expected / length + 2 * p / (length * length));
  EXPECT_NEAR(static_cast<double>(measured), expected + p / length, 5 * deviation);
}

class VarFeedback : public testing::TestWithParam<Process> {
 protected:
  static constexpr int kLength = 100000;

  void expectFeedback(int p, const test::Feedback& expected) const {
    const Process& process = GetParam();
    const simo::Matrix<float> x = test::autoregression({process.a}, process.sigma, kLength, 4711);
    const test::Measured m = test::measure(x, p, simo::LagPairForm::kConsistent);
    ASSERT_TRUE(m.defined);
    expectMeasure(m.x2y, expected.x2y, p, kLength);
    expectMeasure(m.y2x, expected.y2x, p, kLength);
    expectMeasure(m.xy, expected.xy, 1, kLength);
  }
};

TEST_P(VarFeedback, OfOrderOneIsThatOfTheFirstOrderProjections) {
  expectFeedback(1, feedbackOfOrder(GetParam(), 1));
}

TEST_P(VarFeedback, OfHighOrderIsThatOfTheWholePast) {
  expectFeedback(12, feedbackOfWholePast(GetParam()));
}

TEST_P(VarFeedback, OfVeryHighOrderProjectionsIsTheSpectralOne) {
  const test::Feedback projections = feedbackOfOrder(GetParam(), 200);
  const test::Feedback spectral = feedbackOfWholePast(GetParam());
  EXPECT_NEAR(projections.x2y, spectral.x2y, 1e-9);
  EXPECT_NEAR(projections.y2x, spectral.y2x, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Processes, VarFeedback, testing::Values(kWhite, kDriven, kBack, kInstant, kBoth),
                         [](const auto& tested) { return tested.param.name; });

TEST(VarFeedbackOracle, KnowsTheClosedFormOfADrivenWhiteSeries) {
  // y(t) = 0.7 x(t-1) + e(t) is white with variance 1.49 on its own, and 1 once x is known.
  const test::Feedback feedback = feedbackOfOrder(kDriven, 5);
  EXPECT_NEAR(feedback.x2y, std::log(1.49), 1e-12);
  EXPECT_NEAR(feedback.y2x, 0, 1e-12);
  EXPECT_NEAR(feedback.xy, 0, 1e-12);
}

}  // namespace
