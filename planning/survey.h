// Where requests stand before anything runs: what each would compute, what of it is there, and which cannot
// be computed at all.
#ifndef TAVMAP_PLANNING_SURVEY_H
#define TAVMAP_PLANNING_SURVEY_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "study/study_plan.h"

namespace planning {

struct Surveyed {
  study::Request request;
  std::optional<study::StudyPlan> plan;  // unset: it cannot be planned
  std::string problem;                   // why, beginning with the request's title
  std::vector<std::size_t> missing;      // references without a finished result
};

struct SurveyOptions {
  std::optional<std::uint32_t> seed;  // overrides the requests'
  std::string version;                // of the software
  // Seeds that nobody gave are drawn and kept; otherwise those that were kept before count, and nothing is
  // written.
  bool drawsSeeds = false;
  bool force = false;  // what is finished is missing all the same
};

// Plans every request; reads headers, tables and first volumes. A request that cannot be planned is one of
// the results. With an order that a criterion chooses, results of any order are finished that it may have
// found.
[[nodiscard]] std::vector<Surveyed> survey(const std::vector<study::Request>& requests,
                                           const SurveyOptions& options);

}  // namespace planning

#endif
