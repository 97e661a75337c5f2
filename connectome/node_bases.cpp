#include "connectome/node_bases.h"

#include <algorithm>
#include <memory>

#include "connectome/in_parallel.h"
#include "connectome/pair_solver.h"

namespace connectome {

NodeBases::NodeBases(const NodeSeries& series, int order, Given given, int threads)
    : nodes(series.nodes), isDefined(series.nodes, 0) {
  const LagBasis first(series, order, given);
  vectors = first.vectors();
  samples = first.samples();
  values.resize(nodes * vectors * samples);
  inParallel(nodes, threads, [&]() -> ItemWorker {
    return [&, basis = std::make_shared<LagBasis>(first)](std::size_t node) {
      const std::span<double> into(values.data() + node * vectors * samples, vectors * samples);
      isDefined[node] = basis->of(series.courseOf(node), into) ? 1 : 0;
      if (isDefined[node] == 0) std::fill(into.begin(), into.end(), 0.0);
    };
  });
}

std::vector<float> NodeBases::inSinglePrecision() const {
  const std::size_t rows = padded(nodes);
  std::vector<float> singles(vectors * rows * samples, 0.0F);
  for (std::size_t node = 0; node < nodes; ++node) {
    for (std::size_t vector = 0; vector < vectors; ++vector) {
      const double* const from = of(node) + vector * samples;
      std::transform(from, from + samples,
                     singles.begin() + static_cast<std::ptrdiff_t>((vector * rows + node) * samples),
                     [](double value) { return static_cast<float>(value); });
    }
  }
  return singles;
}

}  // namespace connectome
