// Everything that is settled before the data of a request are read: what its workers share.
#ifndef TAVMAP_STUDY_STUDY_PLAN_H
#define TAVMAP_STUDY_STUDY_PLAN_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "prepare/interval_plan.h"
#include "prepare/place_names.h"
#include "prepare/regions.h"
#include "prepare/run_plan.h"
#include "request/request.h"

namespace study {

struct StudyPlan {
  Request request;  // with absolute paths
  std::filesystem::path workFolder;
  std::string version;
  std::vector<RunPlan> runs;
  RegionSpace space;
  std::vector<Region> regions;
  std::vector<std::string> regionLabels;     // for file names
  std::shared_ptr<const PlaceNames> places;  // null: the request has no label image
  std::uint32_t seed = 0;
  std::vector<std::string> cautions;  // of runs and conditions; see cautionsOf()
  // Settled with the order:
  int order = 0;
  std::vector<PlannedCondition> conditions;
  std::vector<std::string> conditionLabels;
};

// Looks at every file of the request but reads no time series, only the first volumes of each. Throws
// InputError and formats::FileError.
[[nodiscard]] StudyPlan planStudy(const Request& request, std::uint32_t seed, const std::string& version);

// Plans the conditions for an order and adds their cautions. May be called again for another order.
void settleOrder(StudyPlan& plan, int order);

// The key of a reference's result: inputs, settings, seed and version. Equal keys mean equal files.
[[nodiscard]] std::string resultKey(const StudyPlan& plan, std::size_t region);
// The plan's cautions and those of the region itself; then what else there is, of the data.
[[nodiscard]] std::vector<std::string> cautionsOf(const StudyPlan& plan, std::size_t region,
                                                  const std::vector<std::string>& ofData = {});
// The seed from which the engine's time base is set: with method "plugin" the study's own, since its
// references share one sequence; otherwise one per reference.
[[nodiscard]] std::uint32_t seedOf(const StudyPlan& plan, std::size_t region);

}  // namespace study

#endif
