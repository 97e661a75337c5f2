// Series of nodes with known relations, for tests.
#ifndef TAVMAP_TESTS_CONNECTOME_MADE_SERIES_H
#define TAVMAP_TESTS_CONNECTOME_MADE_SERIES_H

#include <random>
#include <utility>
#include <vector>

#include "connectome/node_series.h"

namespace made {

struct Lead {
  std::size_t from, to;
  double weight;  // of the value one volume ago
};

// Autoregressive nodes of order 1 that share nothing but the leads; `given` more series, independent.
inline connectome::SeriesRun run(std::size_t nodes, int volumes, double memory, unsigned seed,
                                 const std::vector<Lead>& leads = {}, std::size_t given = 0) {
  std::mt19937 engine(seed);
  std::normal_distribution<double> noise;
  const std::size_t all = nodes + given;
  std::vector<double> now(all, 0), before(all, 0);
  connectome::SeriesRun made;
  made.volumes = volumes;
  made.known = {{0, volumes}};
  made.nodes.resize(nodes * static_cast<std::size_t>(volumes));
  made.given.resize(given * static_cast<std::size_t>(volumes));
  for (int t = -50; t < volumes; ++t) {
    before = now;
    for (std::size_t i = 0; i < all; ++i) now[i] = memory * before[i] + noise(engine);
    for (const Lead& lead : leads) now[lead.to] += lead.weight * before[lead.from];
    for (std::size_t i = 0; t >= 0 && i < all; ++i) {
      const std::size_t at = static_cast<std::size_t>(t);
      std::vector<float>& into = i < nodes ? made.nodes : made.given;
      into[(i < nodes ? i : i - nodes) * static_cast<std::size_t>(volumes) + at] =
          static_cast<float>(100 + now[i]);
    }
  }
  return made;
}

// One run in one interval.
inline connectome::NodeSeries series(std::size_t nodes, int volumes, double memory, unsigned seed,
                                     const std::vector<Lead>& leads = {}, std::size_t given = 0) {
  connectome::NodeSeries made{nodes, given, {run(nodes, volumes, memory, seed, leads, given)}};
  made.runs[0].intervals = {{0, volumes}};
  return made;
}

// Two runs of unequal lengths, three intervals.
inline connectome::NodeSeries pooled(std::size_t nodes, unsigned seed, std::size_t given = 0) {
  connectome::NodeSeries made{nodes,
                              given,
                              {run(nodes, 120, 0.6, seed, {{0, 1, 0.4}}, given),
                               run(nodes, 90, 0.3, seed + 1, {{0, 1, 0.4}}, given)}};
  made.runs[0].intervals = {{3, 50}, {60, 60}};
  made.runs[1].intervals = {{0, 90}};
  return made;
}

}  // namespace made

#endif
