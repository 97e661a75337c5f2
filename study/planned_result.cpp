#include "study/planned_result.h"

namespace study {

ConditionResult emptyResult(const PlannedCondition& planned) {
  ConditionResult condition;
  condition.name = planned.name;
  condition.totalVolumes = planned.totalVolumes;
  condition.effectiveVolumes = planned.effectiveVolumes;
  for (const PlannedSet& set : planned.sets)
    condition.sets.push_back({set.source, set.target, set.ranges, set.effectiveVolumes});
  return condition;
}

ReferenceResult emptyResult(const StudyPlan& plan, std::size_t region) {
  ReferenceResult result;
  result.name = plan.regions[region].name;
  result.voxels = plan.regions[region].voxels();
  for (const PlannedCondition& planned : plan.conditions) result.conditions.push_back(emptyResult(planned));
  return result;
}

}  // namespace study
