#include "prepare/course_filter.h"

#include <gtest/gtest.h>

namespace study {
namespace {

std::vector<bool> all(std::size_t volumes) {
  return std::vector<bool>(volumes, true);
}

TEST(CourseFilter, DropsLeadingVolumes) {
  CourseFilter filter(5, 2, {}, all(5));
  std::vector<float> course = {9, 9, 1, 2, 3};
  filter.apply(course.data());
  EXPECT_EQ(filter.outputVolumes(), 3);
  EXPECT_EQ(std::vector<float>(course.begin(), course.begin() + 3), (std::vector<float>{1, 2, 3}));
}

TEST(CourseFilter, BridgesCensoredVolumes) {
  CourseFilter filter(7, 0, {}, {false, true, false, false, true, true, false});
  std::vector<float> course = {99, 1, 99, 99, 4, 5, 99};
  filter.apply(course.data());
  EXPECT_EQ(course, (std::vector<float>{1, 1, 2, 3, 4, 5, 5}));
}

TEST(CourseFilter, GapsAreCountedAfterDropping) {
  CourseFilter filter(5, 1, {}, {false, true, false, true, true});
  std::vector<float> course = {99, 1, 99, 3, 4};
  filter.apply(course.data());
  EXPECT_EQ(std::vector<float>(course.begin(), course.begin() + 4), (std::vector<float>{1, 2, 3, 4}));
}

TEST(CourseFilter, RegressesWithoutTheCensoredVolumes) {
  const std::vector<double> confound = {-2, -1, 0, 1, 2};
  std::vector<bool> kept = all(5);
  kept[2] = false;
  CourseFilter filter(5, 0, {confound}, kept);
  std::vector<float> course = {6, 8, 5000, 12, 14};
  filter.apply(course.data());
  for (const float value : course) EXPECT_NEAR(value, 10, 1e-4);
  EXPECT_EQ(filter.rank(), 1);
}

TEST(CourseFilter, KnowsWhenThereIsNothingToDo) {
  EXPECT_TRUE(CourseFilter(5, 0, {}, all(5)).changesNothing());
  EXPECT_FALSE(CourseFilter(5, 1, {}, all(5)).changesNothing());
}

TEST(CourseFilter, ACourseWithNothingKeptStays) {
  CourseFilter filter(2, 0, {}, {false, false});
  std::vector<float> course = {3, 4};
  filter.apply(course.data());
  EXPECT_EQ(course, (std::vector<float>{3, 4}));
}

}  // namespace
}  // namespace study
