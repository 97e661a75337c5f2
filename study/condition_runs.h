// What the maps of one reference and one condition are made from: the same series as the engine saw.
#ifndef TAVMAP_STUDY_CONDITION_RUNS_H
#define TAVMAP_STUDY_CONDITION_RUNS_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "study/prepared_courses.h"
#include "study/study_plan.h"

namespace study {

// Courses of references by the names of reference and VTC.
using ReferenceCourses = std::map<std::pair<std::string, std::string>, std::vector<float>>;

// One run, or a pair, of a condition. Series have the length that both runs of a pair have.
struct ConditionRun {
  std::string name;                 // "b", or "b with a" when the reference's course is that of a
  const RunPlan* plan;              // of the run whose voxels are mapped
  std::vector<float> reference;     // course
  std::vector<VolumeRange> ranges;  // of the prepared run, from 1
  PreparedCourses voxels;

  [[nodiscard]] std::vector<float> voxel(std::size_t index);
  // The ranges as {first, length} of values counted from 0.
  template <typename Interval>
  [[nodiscard]] std::vector<Interval> intervals() const {
    std::vector<Interval> list;
    for (const VolumeRange& range : ranges) list.push_back({range.first - 1, length(range)});
    return list;
  }
};

// All of them, in the order of the plan, whose runs must be prepared and outlive them. Throws
// formats::FileError.
[[nodiscard]] std::vector<ConditionRun> conditionRuns(const StudyPlan& plan, std::size_t region,
                                                      std::size_t condition, const ReferenceCourses& courses);
// The same with voxels from elsewhere, at present in memory.
[[nodiscard]] std::vector<ConditionRun> conditionRuns(const StudyPlan& plan, std::size_t region,
                                                      std::size_t condition, const ReferenceCourses& courses,
                                                      const OpenCourses& open);

}  // namespace study

#endif
