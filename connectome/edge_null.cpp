#include "connectome/edge_null.h"

#include <memory>
#include <mutex>
#include <optional>

#include "connectome/in_parallel.h"
#include "connectome/surrogate_shares.h"

namespace connectome {
namespace {

struct NullNodes {
  FixedNodes past;
  std::optional<FixedNodes> present;  // where something is given: of the instantaneous measure
};

NullNodes nullNodes(const NodeSeries& series, int order, int threads) {
  if (series.given == 0) return {FixedNodes(series, order, Given::kNothing, threads), std::nullopt};
  return {FixedNodes(series, order, Given::kPast, threads),
          FixedNodes(series, order, Given::kPresent, threads)};
}

// Of one thread. Gives its tally to the sum when it ends.
class NodeWorker {
 public:
  NodeWorker(const NodeSeries& series, const NullNodes& nodes, int order, const NullOptions& options,
             NullTally& sum, std::mutex& mutex)
      : nodes_(nodes),
        surrogates_(series, options.draws, options.seed),
        shares_(nodes.past, order, options.draws),
        tally_(series.nodes, options.draws),
        sum_(sum),
        mutex_(mutex) {
    if (nodes.present) atOnce_.emplace(*nodes.present, order, options.draws);
  }
  ~NodeWorker() {
    const std::lock_guard<std::mutex> lock(mutex_);
    sum_ += tally_;
  }
  NodeWorker(const NodeWorker&) = delete;
  NodeWorker& operator=(const NodeWorker&) = delete;

  void work(std::size_t node) {
    if (nodes_.past.isDefined[node] == 0 || !surrogates_.begin(node)) return;
    shares_.compute(surrogates_);
    if (atOnce_) atOnce_->compute(surrogates_);
    const float* const atOnce = atOnce_ ? atOnce_->instantaneous() : shares_.instantaneous();
    tally_.add(node, {shares_.toOthers(), shares_.fromOthers(), atOnce, nodes_.past.columns},
               nodes_.past.isDefined);
  }

 private:
  const NullNodes& nodes_;
  NodeSurrogates surrogates_;
  SurrogateShares shares_;
  std::optional<SurrogateShares> atOnce_;
  NullTally tally_;
  NullTally& sum_;
  std::mutex& mutex_;
};

}  // namespace

NullTally edgeNull(const NodeSeries& series, int order, const NullOptions& options) {
  NullTally sum(series.nodes, options.draws);
  std::mutex mutex;
  const NullNodes nodes = nullNodes(series, order, options.threads);
  const double all = static_cast<double>(series.nodes);
  inParallel(
      series.nodes, options.threads,
      [&]() -> ItemWorker {
        return [worker = std::make_shared<NodeWorker>(series, nodes, order, options, sum, mutex)](
                   std::size_t node) { worker->work(node); };
      },
      [&](std::size_t done) {
        if (options.progress) options.progress(static_cast<double>(done) / all);
      });
  for (const Measure measure : kMeasures) sum.counts(measure).close();
  return sum;
}

}  // namespace connectome
