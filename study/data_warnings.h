// What the data of one reference are warned about (suitability/warnings.h), over all its conditions.
#ifndef TAVMAP_STUDY_DATA_WARNINGS_H
#define TAVMAP_STUDY_DATA_WARNINGS_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "study/condition_runs.h"
#include "suitability/run_findings.h"

namespace study {

class DataWarnings {
 public:
  void add(const std::string& condition, const std::vector<std::string>& texts);
  // Each text once, in the order in which they came. One that some of several conditions say, and that
  // does not name a condition itself, ends with whose it is.
  [[nodiscard]] std::vector<std::string> texts() const;

 private:
  std::vector<std::string> conditions_;
  std::vector<std::pair<std::string, std::vector<std::string>>> texts_;  // with the conditions that say it
};

// What the data of one condition say.
struct ConditionFindings {
  // One per run; nothing where neither reference nor voxels can be judged.
  std::vector<std::optional<suitability::RunFindings>> runs;
  std::vector<std::string> warnings;
};

// With the reference's name and the model order. codes: StatusCode per voxel; about 50 computed voxels,
// spread evenly, are looked at. Throws formats::FileError.
[[nodiscard]] ConditionFindings lookAtCondition(const StudyPlan& plan, const std::string& reference,
                                                const std::string& condition, std::vector<ConditionRun>& runs,
                                                const std::vector<std::uint8_t>& codes);

}  // namespace study

#endif
