// The reference's mean time courses as a table, one column per run.
#ifndef TAVMAP_RESULTS_COURSE_TABLE_H
#define TAVMAP_RESULTS_COURSE_TABLE_H

#include <string>
#include <vector>

namespace study {

struct CourseColumn {
  std::string run;
  int volumes = 0;                             // of the stored image
  int dropped = 0;                             // leading ones that the course lacks
  double shift = 0;                            // what preparation added to every value
  const std::vector<float>* course = nullptr;  // null: this run has none
  double scale = 1;                            // what preparation multiplied every value with, before that
};

// Tab-separated, the run names first, then one row per volume of the longest stored image, "n/a" where
// a run has no value. Both are taken off again.
[[nodiscard]] std::string courseTable(const std::vector<CourseColumn>& columns);

}  // namespace study

#endif
