// A reference without the voxels that have no course: one value that is not a number would take the mean of
// all of them, and with it every map.
#ifndef TAVMAP_STUDY_USABLE_REGION_H
#define TAVMAP_STUDY_USABLE_REGION_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "study/prepared_courses.h"
#include "study/study_plan.h"

namespace study {

struct UsableRegion {
  Region region;                   // the voxels that are averaged
  std::vector<std::string> notes;  // what was left out, in words
};

// Leaves out voxels that hold a value that is not finite, or that are 0 throughout (outside the field of
// view), in any run whose course a condition takes. These must be prepared; their files are read. With
// method "plugin" the region stays as it is. Throws InputError when less than half is left, and
// formats::FileError.
[[nodiscard]] UsableRegion usableRegion(const StudyPlan& plan, std::size_t region);

// The same with courses from elsewhere, at present in memory; shiftOf: the constant that the import of a run
// added to its values.
[[nodiscard]] UsableRegion usableRegion(const StudyPlan& plan, std::size_t region, const OpenCourses& open,
                                        const std::function<double(const RunPlan&)>& shiftOf);

// One after the other.
[[nodiscard]] std::vector<UsableRegion> usableRegions(const StudyPlan& plan,
                                                      const std::vector<std::size_t>& regions);

}  // namespace study

#endif
