#include "connectome/surrogate_shares.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "connectome/matrix_product.h"

namespace connectome {
namespace {

// Draws whose products with all nodes stay in the cache.
constexpr std::size_t kChunk = 64;
constexpr std::size_t kLanes = PairSolver<double>::kLanes;

double exactProduct(const float* a, const float* b, std::size_t count) {
  double sum = 0;
  for (std::size_t t = 0; t < count; ++t) sum += static_cast<double>(a[t]) * static_cast<double>(b[t]);
  return sum;
}

}  // namespace

FixedNodes::FixedNodes(const NodeSeries& series, int order, Given given, int threads)
    : basis(series, order, given), columns(padded(series.nodes)) {
  const NodeBases bases(series, order, given, threads);
  vectors = bases.inSinglePrecision();
  isDefined = bases.isDefined;
}

SurrogateShares::SurrogateShares(const FixedNodes& nodes, int order, std::size_t draws)
    : nodes_(nodes),
      draws_(draws),
      basis_(nodes.basis),
      solver_(order),
      exact_(order),
      vectors_(basis_.vectors() * basis_.samples()),
      chunk_(kChunk * vectors_.size()),
      isLoaded_(kChunk),
      products_(kChunk * basis_.vectors() * basis_.vectors() * nodes.columns),
      exactProducts_(basis_.vectors() * basis_.vectors() * kLanes),
      shares_(3 * plane()) {}

void SurrogateShares::compute(NodeSurrogates& surrogates) {
  for (std::size_t first = 0; first < draws_; first += kChunk) {
    const std::size_t count = std::min(kChunk, draws_ - first);
    load(surrogates, first, count);
    multiplyTransposed(chunk_.data(), basis_.vectors() * kChunk, nodes_.vectors.data(),
                       basis_.vectors() * nodes_.columns, basis_.samples(), products_.data());
    solve(first, count);
  }
}

void SurrogateShares::load(NodeSurrogates& surrogates, std::size_t first, std::size_t count) {
  const std::size_t samples = basis_.samples();
  for (std::size_t i = 0; i < count; ++i) {
    isLoaded_[i] = basis_.of(surrogates.draw(first + i), vectors_) ? 1 : 0;
    for (std::size_t vector = 0; vector < basis_.vectors(); ++vector) {
      const double* const from = vectors_.data() + vector * samples;
      std::transform(from, from + samples, chunk_.data() + (vector * kChunk + i) * samples,
                     [](double value) { return static_cast<float>(value); });
    }
  }
}

void SurrogateShares::solve(std::size_t first, std::size_t count) {
  const std::size_t row = basis_.vectors() * nodes_.columns;
  for (std::size_t i = 0; i < count; ++i) {
    float* const to = shares_.data() + (first + i) * nodes_.columns;
    if (isLoaded_[i] == 0) {
      for (std::size_t kind = 0; kind < 3; ++kind)
        std::fill_n(to + kind * plane(), nodes_.columns, std::numeric_limits<float>::quiet_NaN());
      continue;
    }
    solver_.solve({products_.data() + i * row, kChunk * row, nodes_.columns}, nodes_.columns,
                  {to, to + plane(), to + 2 * plane()});
    for (std::size_t node = 0; node < nodes_.isDefined.size(); ++node)
      if (std::isnan(to[node])) repair(first + i, i, node);
  }
}

// Once more in double precision, as the first of many lanes.
void SurrogateShares::repair(std::size_t draw, std::size_t indexInChunk, std::size_t node) {
  const std::size_t samples = basis_.samples(), vectors = basis_.vectors();
  for (std::size_t i = 0; i < vectors; ++i)
    for (std::size_t j = 0; j < vectors; ++j)
      exactProducts_[(i * vectors + j) * kLanes] =
          exactProduct(chunk_.data() + (i * kChunk + indexInChunk) * samples,
                       nodes_.vectors.data() + (j * nodes_.columns + node) * samples, samples);
  std::array<double, 3 * kLanes> solved{};
  exact_.solve({exactProducts_.data(), vectors * kLanes, kLanes}, kLanes,
               {solved.data(), solved.data() + kLanes, solved.data() + 2 * kLanes});
  for (std::size_t kind = 0; kind < 3; ++kind)
    shares_[kind * plane() + draw * nodes_.columns + node] = static_cast<float>(solved[kind * kLanes]);
}

}  // namespace connectome
