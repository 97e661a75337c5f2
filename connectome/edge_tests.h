// p, q and family-wise p of every edge.
#ifndef TAVMAP_CONNECTOME_EDGE_TESTS_H
#define TAVMAP_CONNECTOME_EDGE_TESTS_H

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "connectome/edge_shares.h"
#include "connectome/null_tally.h"

namespace connectome {

// Of one measure; NaN where an edge has none. Instantaneous and net ones are symmetric.
struct EdgeTests {
  explicit EdgeTests(std::size_t nodes = 0) : p(nodes), q(nodes), pFamilyWise(nodes) {}
  EdgeMatrix p;            // (1 + null values of all edges that reach it) / (1 + null values)
  EdgeMatrix q;            // the smallest rate of false discoveries over all edges at which it passes
  EdgeMatrix pFamilyWise;  // (1 + draws whose largest value reaches it) / (1 + draws)
  std::size_t edges = 0;   // tested: the family
};

// Magnitudes, each divided by the mean of its own null values, against those of `null` (null_tally.h). The
// rate q is that of Benjamini & Hochberg 1995 (Journal of the Royal Statistical Society B 57, 289-300) times
// `constant`; family-wise p as in Westfall & Young 1993, Resampling-based multiple testing, by the maximum.
[[nodiscard]] EdgeTests testEdges(const EdgeShares& shares, Measure measure, const NullTally& null,
                                  double constant);

// The smallest rate at which each of these p passes, times `constant`, at most 1. NaN stays NaN and counts
// for nothing.
[[nodiscard]] std::vector<double> adjustedQ(std::span<const double> p, double constant);

// Fills q from p, of ordered pairs or of unordered ones.
void adjustEdges(Measure measure, double constant, EdgeTests& tests);

}  // namespace connectome

#endif
