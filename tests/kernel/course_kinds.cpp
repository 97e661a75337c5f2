#include "tests/kernel/course_kinds.h"

#include <algorithm>
#include <array>
#include <limits>

namespace differential {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

void fill(Course& course, double value) {
  std::fill(course.begin(), course.end(), value);
}

void scale(Course& course, double factor) {
  for (double& v : course) v *= factor;
}

template <typename Value>
void fillBy(Course& course, Value value) {
  for (std::size_t t = 0; t < course.size(); ++t) course[t] = value(static_cast<double>(t), course[t]);
}

std::size_t sharedLength(const Course& a, const Course& b) {
  return std::min(a.size(), b.size());
}

void couple(Course& course, const Course& partner) {
  for (std::size_t t = 1; t < sharedLength(course, partner); ++t)
    course[t] += 0.4 * (partner[t - 1] - partner[0]);
}

void echo(Course& course, const Course& partner) {
  for (std::size_t t = 1; t < sharedLength(course, partner); ++t) course[t] = partner[t - 1];
}

void repeatScaled(Course& course, const Course& partner) {
  for (std::size_t t = 0; t < sharedLength(course, partner); ++t) course[t] = 2.0 * partner[t] + 7.0;
}

}  // namespace

const char* nameOf(CourseKind kind) {
  static constexpr std::array<const char*, kCourseKinds> kNames = {"coupled",
                                                                   "flat",
                                                                   "straight",
                                                                   "periodic",
                                                                   "with a NaN",
                                                                   "with an infinity",
                                                                   "huge",
                                                                   "nearly flat",
                                                                   "overflowing",
                                                                   "with an outlier",
                                                                   "zero",
                                                                   "partner's echo",
                                                                   "partner's multiple",
                                                                   "tiny"};
  return kNames[static_cast<std::size_t>(kind)];
}

void applyKind(CourseKind kind, double mean, const Course& partner, const std::function<int(int)>& upTo,
               Course& course) {
  double& any = course[static_cast<std::size_t>(upTo(static_cast<int>(course.size()) - 1))];
  switch (kind) {
    case CourseKind::kCoupled:
      return couple(course, partner);
    case CourseKind::kFlat:
      return fill(course, mean + 0.3);
    case CourseKind::kStraight:
      return fillBy(course, [&](double t, double) { return mean + 3.0 * t; });
    case CourseKind::kPeriodic:
      return fillBy(course, [&](double t, double) {
        return mean + 50.0 * static_cast<double>(static_cast<int>(t) % 3);
      });
    case CourseKind::kWithNan:
      any = std::numeric_limits<double>::quiet_NaN();
      return;
    case CourseKind::kWithInfinity:
      any = upTo(1) == 0 ? kInfinity : -kInfinity;
      return;
    case CourseKind::kHuge:
      return scale(course, 1e14);
    case CourseKind::kNearlyFlat:
      return fillBy(course, [&](double, double v) { return 1000.0 + 1e-4 * (v - mean); });
    case CourseKind::kOverflowing:
      return scale(course, 1e32);
    case CourseKind::kWithOutlier:
      any = 60000.0;
      return;
    case CourseKind::kZero:
      return fill(course, 0.0);
    case CourseKind::kPartnersEcho:
      return echo(course, partner);
    case CourseKind::kPartnersMultiple:
      return repeatScaled(course, partner);
    case CourseKind::kTiny:
      scale(course, 1e-26);
      course[0] = 200.0;
      return;
  }
}

}  // namespace differential
