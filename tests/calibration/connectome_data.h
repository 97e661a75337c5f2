// Connectomes whose truth is known.
#ifndef TAVMAP_TESTS_CALIBRATION_CONNECTOME_DATA_H
#define TAVMAP_TESTS_CALIBRATION_CONNECTOME_DATA_H

#include <functional>
#include <vector>

#include "connectome/condition_result.h"

namespace calibration {

enum class NodeKind {
  kAlike,        // AR(1) of .6
  kUnequal,      // AR(1) of .2 to .9
  kHaemodynamic  // white noise through a haemodynamic response, and scanner noise
};

struct ConnectomeCell {
  const char* name;
  NodeKind kind;
  int volumes;
  double trSeconds;
  std::size_t nodes;
  int halves;  // 2: the nodes of each half share a signal, and only pairs across are unrelated
  int order;
  bool givenAllOthers;
};

[[nodiscard]] const std::vector<ConnectomeCell>& connectomeCells();

struct ConnectomeSet {
  connectome::NodeSeries series;
  std::function<bool(std::size_t, std::size_t)> isNull;  // whether an edge is of unrelated nodes
};

// Nothing of a set depends on how many are made.
[[nodiscard]] ConnectomeSet makeConnectomeSet(const ConnectomeCell& cell, unsigned set);

}  // namespace calibration

#endif
