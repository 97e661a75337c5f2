// The series that a connectome is computed from: one per node and run, and what was done to them.
#ifndef TAVMAP_CONNECTOME_NODE_SERIES_H
#define TAVMAP_CONNECTOME_NODE_SERIES_H

#include <cstddef>
#include <functional>
#include <vector>

#include "simo/burg.h"

namespace connectome {

// Values first ... first + length - 1 of a run's series, 0-based.
struct Interval {
  int first, length;
};

using Treatment = std::function<void(float*)>;

struct SeriesRun {
  int volumes = 0;
  std::vector<Interval> intervals;       // that models are fitted to, ascending
  std::vector<simo::Stretch> known;      // volumes that surrogates' models rest on, ascending
  std::vector<float> nodes;              // [node][volume]
  std::vector<float> given;              // [series][volume]: what measures are conditional on
  std::function<Treatment()> treatment;  // makes what a surrogate of all volumes goes through, in place, one
                                         // for each thread; empty: nothing
};

// Runs are pooled: one model over the samples of all of them.
struct NodeSeries {
  std::size_t nodes = 0;
  std::size_t given = 0;
  std::vector<SeriesRun> runs;

  // The series of a node, or of what is given, in every run.
  [[nodiscard]] std::vector<const float*> courseOf(std::size_t node) const;
  [[nodiscard]] std::vector<const float*> givenCourse(std::size_t series) const;
  // Samples of a model of this order: all whose past lies within their interval.
  [[nodiscard]] std::size_t samples(int order) const;
};

}  // namespace connectome

#endif
