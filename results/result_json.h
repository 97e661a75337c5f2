// What goes with the results: the sidecar of every image, the record of a reference, the description
// of the data set. No time stamps: equal results are equal files.
#ifndef TAVMAP_RESULTS_RESULT_JSON_H
#define TAVMAP_RESULTS_RESULT_JSON_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "prepare/regions.h"
#include "prepare/run_plan.h"
#include "request/request.h"
#include "results/record.h"
#include "results/results.h"

namespace study {

// What all results of a request share.
struct ResultContext {
  const Request& request;
  const std::vector<RunPlan>& runs;
  std::string version;
  std::uint32_t seed = 0;  // of the study
  int order = 1;           // in use
  std::vector<std::string> cautions;
  ReferenceSource source = {};
  std::vector<InputRecord> inputs = {};  // of all runs, and of the reference
};

// "bids:raw:sub-01/..." with percent signs for what no URI may hold, when a data set of the request has the
// file; else the plain file name.
[[nodiscard]] std::string sourceUri(const Request& request, const std::filesystem::path& file);

// The region's source, with files as sourceUri() names them.
[[nodiscard]] ReferenceSource referenceSource(const Request& request, const Region& region);

// How a label image was brought to the grid of the runs, in words.
[[nodiscard]] const char* onGridOfRuns(bool isResampled);

nlohmann::ordered_json mapSidecar(const ResultContext& context, const ReferenceResult& reference,
                                  const ConditionResult& condition, const MapResult& map);
nlohmann::ordered_json statusSidecar(const ResultContext& context, const ReferenceResult& reference,
                                     const ConditionResult& condition);
// Of the direction map, when there is one.
nlohmann::ordered_json directionSidecar(const ResultContext& context, const ReferenceResult& reference,
                                        const ConditionResult& condition);
// Of the image of voxels that pass, when the map has thresholds.
nlohmann::ordered_json passingSidecar(const ResultContext& context, const ReferenceResult& reference,
                                      const ConditionResult& condition, const MapResult& map);
// What the codes of that image mean, from 0. thresholds: ascending q.
[[nodiscard]] std::vector<std::string> passingNames(const std::vector<ThresholdResult>& thresholds);
// Sources, model and warnings into the sidecar of a file made from a condition.
void addOriginAndModel(const ResultContext& context, const ReferenceResult& reference,
                       const ConditionResult& condition, nlohmann::ordered_json& json);
// Everything about one reference but its files; `key` says from which inputs it was made.
[[nodiscard]] Record referenceRecord(const ResultContext& context, const ReferenceResult& reference,
                                     const std::string& key);

}  // namespace study

#endif
