// The regions of a request as nodes: their mean courses, and what is known of them beside.
#ifndef TAVMAP_STUDY_CONNECTOME_SERIES_H
#define TAVMAP_STUDY_CONNECTOME_SERIES_H

#include <cstddef>
#include <string>
#include <vector>

#include "connectome/node_series.h"
#include "connectome/nodes.h"
#include "study/study_plan.h"

namespace study {

// The references that stand for nodes. One without usable voxels is a node without a series, of zeros.
struct ConnectomeNodes {
  std::vector<Region> regions;  // the voxels that are averaged; none: without a series
  std::vector<connectome::Node> nodes;
  std::vector<std::string> undefined;  // nodes without a series
  std::vector<std::string> notes;      // what was left out, in words
};

// Runs must be prepared. Throws formats::FileError.
[[nodiscard]] ConnectomeNodes connectomeNodes(const StudyPlan& plan);

// What measures are conditional on, as the request names it.
struct GivenNames {
  bool globalSignal = false, allOthers = false;
  std::vector<std::size_t> regions;  // of the plan
};
// Throws InputError for a name that no reference has, with the nearest one.
[[nodiscard]] GivenNames givenNames(const StudyPlan& plan);

// Mean courses of all nodes in the runs of a condition, in single precision as maps have them, and what is
// given: the global signal (mean of all voxels above the inclusion threshold at the first volume) and
// regions. Surrogates go through what maps' go through. Throws formats::FileError.
[[nodiscard]] connectome::NodeSeries connectomeSeries(const StudyPlan& plan,
                                                      const PlannedCondition& condition,
                                                      const ConnectomeNodes& nodes, const GivenNames& given);

}  // namespace study

#endif
