// The clusters of one reference and condition as a table (*_clusters.tsv), and what its columns mean.
#ifndef TAVMAP_RESULTS_CLUSTER_TABLE_H
#define TAVMAP_RESULTS_CLUSTER_TABLE_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "results/cluster_findings.h"
#include "results/result_json.h"

namespace study {

class ClusterTable {
 public:
  // One row per cluster, numbered from 1 in the order given. Maps are added in their order, their levels by
  // ascending q.
  void add(tav::MapType type, const ThresholdResult& level, const std::vector<PlacedCluster>& clusters);
  // Header and rows; "n/a" for what there is none of.
  [[nodiscard]] std::string text() const;

 private:
  std::string rows_;
};

// Every column described, with what the table was made from. names: null when places have none.
nlohmann::ordered_json clusterSidecar(const ResultContext& context, const ReferenceResult& reference,
                                      const ConditionResult& condition, const PlaceNames* names);

}  // namespace study

#endif
