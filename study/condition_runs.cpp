#include "study/condition_runs.h"

#include <fmt/core.h>

#include <algorithm>

namespace study {
namespace {

const RunPlan& runNamed(const StudyPlan& plan, const std::string& name) {
  return *std::find_if(plan.runs.begin(), plan.runs.end(),
                       [&](const RunPlan& run) { return run.request.name == name; });
}

}  // namespace

std::vector<float> ConditionRun::voxel(std::size_t index) {
  std::vector<float> course = voxels.read(index);
  course.resize(reference.size());
  return course;
}

std::vector<ConditionRun> conditionRuns(const StudyPlan& plan, std::size_t region, std::size_t condition,
                                        const ReferenceCourses& courses) {
  return conditionRuns(plan, region, condition, courses, [&plan](const RunPlan& run) {
    return PreparedCourses(plan.workFolder / run.vtcName);
  });
}

std::vector<ConditionRun> conditionRuns(const StudyPlan& plan, std::size_t region, std::size_t condition,
                                        const ReferenceCourses& courses, const OpenCourses& open) {
  std::vector<ConditionRun> runs;
  for (const PlannedSet& set : plan.conditions[condition].sets) {
    const RunPlan &source = runNamed(plan, set.source), &target = runNamed(plan, set.target);
    const std::string name =
        &source == &target ? set.target : fmt::format("{} with {}", set.target, set.source);
    runs.push_back({name, &target, courses.at({plan.regions[region].name, source.vtcName}),
                    shifted(set.ranges, -target.volumes.dropped), open(target)});
    ConditionRun& run = runs.back();
    const auto volumes = static_cast<std::size_t>(run.voxels.volumes());
    run.reference.resize(std::min(run.reference.size(), volumes));
  }
  return runs;
}

}  // namespace study
