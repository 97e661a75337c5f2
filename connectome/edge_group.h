// Connectomes of many participants: tests of a linear model at every edge.
#ifndef TAVMAP_CONNECTOME_EDGE_GROUP_H
#define TAVMAP_CONNECTOME_EDGE_GROUP_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "connectome/edge_shares.h"
#include "inference/model.h"
#include "inference/test_options.h"
#include "inference/test_result.h"

namespace connectome {

// One measure of all participants. Places are edges: ordered pairs of influence, unordered ones (row <
// column) of the others.
struct GroupMatrices {
  std::vector<std::string> nodes;
  Measure measure = Measure::kNet;
  std::vector<std::string> files;          // per row
  std::vector<std::pair<int, int>> edges;  // per place: row and column of the matrices
  std::vector<float> values;               // [row][place]; NaN: that participant has none
};

// Reads *_relmat.tsv files of one measure; their nodes must have the same names in the same order. Throws
// formats::FileError, naming the first that differs and how.
[[nodiscard]] GroupMatrices readGroupMatrices(const std::vector<std::string>& files, Measure measure);

// A set of edges that touch, all beyond the forming Z on one side (network-based statistic: Zalesky, Fornito
// & Bullmore 2010, NeuroImage 53, 1197-1207, doi:10.1016/j.neuroimage.2010.06.041).
struct EdgeComponent {
  std::vector<std::size_t> places;
  std::size_t nodes = 0;
  double mass = 0, pFwe = 1;
  int sign = 1;
};

struct EdgeGroupResult {
  inference::TestResult test;             // per place
  std::vector<EdgeComponent> components;  // by descending mass
};

// options.clusterFormingZ forms components; edges are not enhanced. Throws std::invalid_argument, saying what
// to do, when the model cannot be tested, and when signs of values that are never below 0 were to be flipped:
// of influence itself a one-sample test says nothing, of net influence or of differences it does.
[[nodiscard]] EdgeGroupResult testGroupEdges(const inference::Model& model, const GroupMatrices& matrices,
                                             inference::TestOptions options);

// Matrices of effect, t, z, p, q and family-wise p, a table of components with their edges, and sidecars:
// STEM_meas-M_stat-S_relmat.tsv and STEM_meas-M_components.tsv. question: in words. Returns the names. Throws
// formats::FileError.
std::vector<std::string> writeGroupEdges(const std::filesystem::path& folder, const std::string& stem,
                                         const std::string& question, const GroupMatrices& matrices,
                                         const EdgeGroupResult& result);

}  // namespace connectome

#endif
