// What a result will say of its conditions, before their data are read.
#ifndef TAVMAP_STUDY_PLANNED_RESULT_H
#define TAVMAP_STUDY_PLANNED_RESULT_H

#include <cstddef>

#include "results/results.h"
#include "study/study_plan.h"

namespace study {

// Name, runs and volumes; no voxels, no maps.
[[nodiscard]] ConditionResult emptyResult(const PlannedCondition& planned);
// Of all conditions.
[[nodiscard]] ReferenceResult emptyResult(const StudyPlan& plan, std::size_t region);

}  // namespace study

#endif
