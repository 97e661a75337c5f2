#include "connectome/edge_shares.h"

#include <cmath>
#include <limits>
#include <memory>

#include "connectome/in_parallel.h"
#include "connectome/node_bases.h"
#include "connectome/pair_solver.h"

namespace connectome {
namespace {

// One node with those behind it.
class RowOfPairs {
 public:
  RowOfPairs(const NodeBases& bases, int order)
      : bases_(bases),
        solver_(order),
        columns_(padded(bases.nodes)),
        products_(bases.vectors * bases.vectors * columns_),
        shares_(3 * columns_) {}

  void solve(std::size_t x) {
    const std::size_t count = bases_.samples;
    for (std::size_t y = x + 1; y < bases_.nodes; ++y)
      for (std::size_t i = 0; i < bases_.vectors; ++i)
        for (std::size_t j = 0; j < bases_.vectors; ++j)
          products_[(i * bases_.vectors + j) * columns_ + y] =
              dotProduct(bases_.of(x) + i * count, bases_.of(y) + j * count, count);
    solver_.solve({products_.data(), bases_.vectors * columns_, columns_}, columns_,
                  {shares_.data(), shares_.data() + columns_, shares_.data() + 2 * columns_});
  }
  [[nodiscard]] double share(std::size_t kind, std::size_t y) const { return shares_[kind * columns_ + y]; }

 private:
  const NodeBases& bases_;
  PairSolver<double> solver_;
  std::size_t columns_;
  std::vector<double> products_, shares_;
};

template <typename Use>
void forEachPair(const NodeBases& bases, int order, int threads, const Use& use) {
  inParallel(bases.nodes, threads, [&]() -> ItemWorker {
    return [&, row = std::make_shared<RowOfPairs>(bases, order)](std::size_t x) {
      if (bases.isDefined[x] == 0) return;
      row->solve(x);
      for (std::size_t y = x + 1; y < bases.nodes; ++y)
        if (bases.isDefined[y] != 0) use(x, y, *row);
    };
  });
}

}  // namespace

EdgeMatrix::EdgeMatrix(std::size_t size) : nodes(size), values(size * size, std::nan("")) {}

const EdgeMatrix& EdgeShares::of(Measure measure) const {
  if (measure == Measure::kInfluence) return influence;
  return measure == Measure::kNet ? net : instantaneous;
}

EdgeShares edgeShares(const NodeSeries& series, int order, int threads) {
  EdgeShares shares(series.nodes);
  const auto takeInstantaneous = [&](std::size_t x, std::size_t y, const RowOfPairs& row) {
    shares.instantaneous.at(x, y) = shares.instantaneous.at(y, x) = row.share(2, y);
  };
  const bool isConditional = series.given > 0;
  const NodeBases past(series, order, isConditional ? Given::kPast : Given::kNothing, threads);
  forEachPair(past, order, threads, [&](std::size_t x, std::size_t y, const RowOfPairs& row) {
    const double toY = row.share(0, y), toX = row.share(1, y);
    shares.influence.at(x, y) = toY;
    shares.influence.at(y, x) = toX;
    shares.net.at(x, y) = netShare(toY, toX);
    shares.net.at(y, x) = -shares.net.at(x, y);
    if (!isConditional) takeInstantaneous(x, y, row);
  });
  if (isConditional)
    forEachPair(NodeBases(series, order, Given::kPresent, threads), order, threads, takeInstantaneous);
  return shares;
}

EdgeMatrix measureOf(const EdgeShares& shares, Measure measure) {
  EdgeMatrix matrix = shares.of(measure);
  for (double& value : matrix.values)
    value = measure == Measure::kNet ? 2 * std::atanh(value) : -std::log1p(-value);
  return matrix;
}

}  // namespace connectome
