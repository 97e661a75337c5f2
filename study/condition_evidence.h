// The evidence of one condition, put together from what the engine, the checks of the data and the plan know.
#ifndef TAVMAP_STUDY_CONDITION_EVIDENCE_H
#define TAVMAP_STUDY_CONDITION_EVIDENCE_H

#include <cstdint>
#include <vector>

#include "results/evidence.h"
#include "study/condition_runs.h"
#include "study/data_warnings.h"
#include "study/study_plan.h"
#include "tav/run_observer.h"

namespace study {

// During the engine's call with this outcome. runs and findings: of its condition, in the order of the plan.
// codes: StatusCode per voxel.
[[nodiscard]] Evidence conditionEvidence(const StudyPlan& plan, const tav::ConditionOutcome& outcome,
                                         const std::vector<ConditionRun>& runs,
                                         const ConditionFindings& findings,
                                         const std::vector<std::uint8_t>& codes);

}  // namespace study

#endif
