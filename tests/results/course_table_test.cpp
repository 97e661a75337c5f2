#include "results/course_table.h"

#include <gtest/gtest.h>

namespace study {
namespace {

// Two volumes dropped: the course begins at the third row. 600 was added by preparation.
TEST(CourseTable, RowsAreVolumesOfTheStoredImageInItsOwnUnits) {
  const std::vector<float> first = {610.5F, 611, 612}, second = {1, 2};
  EXPECT_EQ(courseTable({{"run-1", 5, 2, 600, &first}, {"run-2", 3, 1, 0, &second}}),
            "run-1\trun-2\n"
            "n/a\tn/a\n"
            "n/a\t1\n"
            "10.5\t2\n"
            "11\tn/a\n"
            "12\tn/a\n");
}

TEST(CourseTable, ARunWithoutACourseHasNoValues) {
  const std::vector<float> course = {1, 2};
  EXPECT_EQ(courseTable({{"a", 2, 0, 0, nullptr}, {"b", 2, 0, -1, &course}}), "a\tb\nn/a\t2\nn/a\t3\n");
}

}  // namespace
}  // namespace study
