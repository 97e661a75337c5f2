// Surrogates of a node's series in every run, the same draw of all nodes from the same random numbers.
#ifndef TAVMAP_CONNECTOME_NODE_SURROGATES_H
#define TAVMAP_CONNECTOME_NODE_SURROGATES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "connectome/node_series.h"
#include "simo/residual_surrogates.h"

namespace connectome {

// Draw k flips the residuals of all nodes by the same signs: surrogates of related nodes are related as
// these are, and none is related to the series of any node. The largest null value of a draw is so one of as
// many independent ones as in the data.
class NodeSurrogates {
 public:
  // Borrows the series.
  NodeSurrogates(const NodeSeries& series, std::size_t draws, std::uint32_t seed);

  // Takes the models of a node. False when a run's series has none; there are no surrogates then.
  [[nodiscard]] bool begin(std::size_t node);
  // Per run, the values of all volumes, until the next call. Several are made at once: in ascending order
  // they cost least.
  [[nodiscard]] const std::vector<const float*>& draw(std::size_t index);

 private:
  static constexpr std::size_t kTogether = simo::ResidualSurrogates::kTogether;
  void drawBlock(std::size_t block);

  const NodeSeries& series_;
  std::vector<std::vector<unsigned>> seeds_;  // per run and draw, of whole blocks
  std::vector<Treatment> treatments_;         // per run
  std::vector<simo::ResidualSurrogates> models_;
  std::vector<std::vector<float>> drawn_;  // per run, a block one behind the other
  std::optional<std::size_t> block_;       // that is drawn
  std::vector<const float*> course_;
};

}  // namespace connectome

#endif
