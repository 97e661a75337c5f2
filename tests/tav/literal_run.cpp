#include "tests/tav/literal_run.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace literal {
namespace {

using Grid = std::vector<std::vector<double>>;

Grid zeros(std::size_t rows, std::size_t columns) {
  return Grid(rows, std::vector<double>(columns, 0.0));
}

// The volumes first ... last without mean and linear trend.
Series detrended(const Series& series, int first, int last) {
  Series part(series.begin() + first - 1, series.begin() + last);
  const double n = static_cast<double>(part.size());
  double mean = 0.0;
  for (const double value : part) mean += value / n;
  double uu = 0.0, uy = 0.0;
  const auto ramp = [&](std::size_t t) { return static_cast<double>(t) / (n - 1) - 0.5; };
  for (std::size_t t = 0; t < part.size(); ++t) {
    part[t] -= mean;
    uu += ramp(t) * ramp(t);
    uy += ramp(t) * part[t];
  }
  for (std::size_t t = 0; t < part.size(); ++t) part[t] -= ramp(t) * uy / uu;
  return part;
}

// Accumulated averages of several series: gamma[k](i, j) and pair[m][k](i, j).
struct Averages {
  Averages(std::size_t n, std::size_t p)
      : gamma(p + 1, zeros(n, n)), pair(p + 1, std::vector<Grid>(p + 1, zeros(n, n))) {}
  std::vector<Grid> gamma;
  std::vector<std::vector<Grid>> pair;

  void add(const std::vector<Series>& x, tav::FitForm form);
  void addSamples(const std::vector<Series>& x);
};

// Sums over the samples that have their whole past in the interval.
void Averages::addSamples(const std::vector<Series>& x) {
  const std::size_t length = x[0].size(), p = gamma.size() - 1;
  for (std::size_t i = 0; i < x.size(); ++i) {
    for (std::size_t j = 0; j < x.size(); ++j) {
      for (std::size_t t = p; t < length; ++t) {
        for (std::size_t k = 0; k <= p; ++k) gamma[k][i][j] += x[i][t] * x[j][t - k];
        for (std::size_t m = 1; m <= p; ++m)
          for (std::size_t k = 1; k <= m; ++k) pair[m][k][i][j] += x[i][t - m] * x[j][t - k];
      }
    }
  }
}

void Averages::add(const std::vector<Series>& x, tav::FitForm form) {
  if (form == tav::FitForm::kLeastSquares) return addSamples(x);
  const std::size_t length = x[0].size(), p = gamma.size() - 1;
  const double n = static_cast<double>(length);
  for (std::size_t i = 0; i < x.size(); ++i) {
    for (std::size_t j = 0; j < x.size(); ++j) {
      std::vector<double> sum(p + 1, 0.0);
      for (std::size_t k = 0; k <= p; ++k)
        for (std::size_t t = k; t < length; ++t) sum[k] += x[i][t] * x[j][t - k];
      for (std::size_t k = 0; k <= p; ++k) gamma[k][i][j] += sum[k] / n;
      for (std::size_t m = 1; m <= p; ++m) {
        for (std::size_t k = 1; k <= m; ++k) {
          const std::size_t d = m - k;
          double value = sum[d];
          for (std::size_t u = length - k; u < length; ++u) value -= x[i][u - d] * x[j][u];
          pair[m][k][i][j] += value / n;
        }
      }
    }
  }
}

// Solves a * matrix = rhs for a row vector by elimination with pivoting.
std::vector<double> solve(Grid matrix, std::vector<double> rhs) {
  const std::size_t n = rhs.size();
  for (std::size_t column = 0; column < n; ++column) {
    std::size_t pivot = column;
    for (std::size_t row = column; row < n; ++row)
      if (std::fabs(matrix[row][column]) > std::fabs(matrix[pivot][column])) pivot = row;
    std::swap(matrix[column], matrix[pivot]);
    std::swap(rhs[column], rhs[pivot]);
    for (std::size_t row = column + 1; row < n; ++row) {
      const double factor = matrix[row][column] / matrix[column][column];
      for (std::size_t c = column; c < n; ++c) matrix[row][c] -= factor * matrix[column][c];
      rhs[row] -= factor * rhs[column];
    }
  }
  for (std::size_t row = n; row-- > 0;) {
    for (std::size_t c = row + 1; c < n; ++c) rhs[row] -= matrix[row][c] * rhs[c];
    rhs[row] /= matrix[row][row];
  }
  return rhs;
}

// The model of the chosen series: coefficients[i] over (lag, series) pairs, and error covariance.
struct Model {
  std::vector<std::vector<double>> coefficients;
  Grid errors;
};

Model fit(const Averages& averages, const std::vector<std::size_t>& series) {
  const std::size_t n = series.size(), p = averages.gamma.size() - 1;
  Grid moments = zeros(n * p, n * p);
  Grid cross = zeros(n, n * p);
  for (std::size_t m = 1; m <= p; ++m) {
    for (std::size_t a = 0; a < n; ++a) {
      for (std::size_t b = 0; b < n; ++b) {
        for (std::size_t k = 1; k <= m; ++k) {
          const double value = averages.pair[m][k][series[a]][series[b]];
          moments[(m - 1) * n + a][(k - 1) * n + b] = value;
          moments[(k - 1) * n + b][(m - 1) * n + a] = value;
        }
        cross[a][(m - 1) * n + b] = averages.gamma[m][series[a]][series[b]];
      }
    }
  }
  Model model{{}, zeros(n, n)};
  for (std::size_t a = 0; a < n; ++a) model.coefficients.push_back(solve(moments, cross[a]));
  for (std::size_t a = 0; a < n; ++a) {
    for (std::size_t b = 0; b < n; ++b) {
      model.errors[a][b] = averages.gamma[0][series[a]][series[b]];
      for (std::size_t c = 0; c < n * p; ++c) model.errors[a][b] -= model.coefficients[a][c] * cross[b][c];
    }
  }
  return model;
}

Measures feedback(const Averages& averages) {
  const Grid joint = fit(averages, {0, 1}).errors;
  const double x = fit(averages, {0}).errors[0][0], y = fit(averages, {1}).errors[0][0];
  const double determinant = joint[0][0] * joint[1][1] - joint[0][1] * joint[1][0];
  return {{std::log(y / joint[1][1]), std::log(x / joint[0][0]),
           std::log(joint[0][0] * joint[1][1] / determinant)}};
}

// Normal numbers in pairs by the polar method, from the C library's generator.
Series normals(std::size_t count, unsigned seed) {
  srand(seed);
  Series numbers;
  while (numbers.size() < count) {
    const double v1 = 2.0 * (rand() * static_cast<double>(4.656613e-10F)) - 1.0;
    const double v2 = 2.0 * (rand() * static_cast<double>(4.656613e-10F)) - 1.0;
    const double s = v1 * v1 + v2 * v2;
    if (s >= 1.0 || s == 0.0) continue;
    const double f = std::sqrt(-2.0 * std::log(s) / s);
    numbers.push_back(v1 * f);
    if (numbers.size() < count) numbers.push_back(v2 * f);
  }
  return numbers;
}

Series simulate(const Model& model, std::size_t length, unsigned seed) {
  Series x = normals(length, seed);
  for (double& value : x) value *= std::sqrt(model.errors[0][0]);
  const auto& a = model.coefficients[0];
  for (std::size_t t = a.size(); t < length; ++t)
    for (std::size_t k = 1; k <= a.size(); ++k) x[t] += a[k - 1] * x[t - k];
  return x;
}

// surrogates[set][s]
std::vector<std::vector<Series>> simulateAll(const std::vector<Set>& sets, const Settings& settings) {
  const auto p = static_cast<std::size_t>(settings.order);
  std::size_t longest = 0;
  for (const Set& set : sets) longest = std::max(longest, set.reference.size());
  std::vector<std::vector<Series>> all;
  Averages pooled(1, p);
  for (const Set& set : sets) {
    const std::size_t length = set.reference.size();
    pooled.add({detrended(set.reference, 1, static_cast<int>(length))}, tav::FitForm::kWritten);
    const Model model = fit(pooled, {0});
    auto& own = all.emplace_back();
    for (int s = 0; s < settings.nrOfSurrogates; ++s) {
      const Series simulated = simulate(model, longest + static_cast<std::size_t>(settings.nrOfDiscarded),
                                        settings.timeBase + static_cast<unsigned>(s));
      own.emplace_back(simulated.end() - static_cast<std::ptrdiff_t>(length), simulated.end());
    }
  }
  return all;
}

}  // namespace

Result run(const std::vector<Set>& sets, const Settings& settings) {
  const auto surrogates = simulateAll(sets, settings);
  const auto p = static_cast<std::size_t>(settings.order);
  const auto draws = static_cast<std::size_t>(settings.options.nullDraws);
  const std::size_t nrOfVoxels = sets[0].voxels.size();
  Result result{std::vector<Measures>(nrOfVoxels),
                std::vector<std::vector<Measures>>(nrOfVoxels, std::vector<Measures>(draws))};
  for (std::size_t v = 0; v < nrOfVoxels; ++v) {
    bool included = true;
    for (const Set& set : sets) included = included && set.voxels[v][0] > settings.inclusionThreshold;
    if (!included) continue;
    Averages observed(2, p);
    std::vector<Averages> null(draws, Averages(2, p));
    const auto drawRow = [&] {
      return static_cast<unsigned>(rand()) % static_cast<unsigned>(settings.nrOfSurrogates);
    };
    const bool leastSquares = settings.options.fitForm == tav::FitForm::kLeastSquares;
    std::vector<unsigned> drawn(draws);
    if (leastSquares) std::generate(drawn.begin(), drawn.end(), drawRow);
    for (std::size_t s = 0; s < sets.size(); ++s) {
      for (const Interval& interval : sets[s].intervals) {
        if (!leastSquares) std::generate(drawn.begin(), drawn.end(), drawRow);
        const Series voxel = detrended(sets[s].voxels[v], interval.first, interval.last);
        observed.add({detrended(sets[s].reference, interval.first, interval.last), voxel},
                     settings.options.fitForm);
        for (std::size_t d = 0; d < draws; ++d)
          null[d].add({detrended(surrogates[s][drawn[d]], interval.first, interval.last), voxel},
                      settings.options.fitForm);
      }
    }
    result.observed[v] = feedback(observed);
    for (std::size_t d = 0; d < draws; ++d) result.null[v][d] = feedback(null[d]);
  }
  return result;
}

}  // namespace literal
