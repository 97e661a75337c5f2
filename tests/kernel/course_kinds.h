// The kinds of courses that the random comparison feeds to the voxel paths.
#ifndef TAVMAP_TESTS_KERNEL_COURSE_KINDS_H
#define TAVMAP_TESTS_KERNEL_COURSE_KINDS_H

#include <functional>
#include <vector>

namespace differential {

using Course = std::vector<double>;

// The order is part of what a seed means: append, do not sort.
enum class CourseKind {
  kCoupled,           // follows its partner by one volume
  kFlat,              // one value, no whole number
  kStraight,          // a slope and nothing else
  kPeriodic,          // three values in turn
  kWithNan,           // one NaN
  kWithInfinity,      // one infinity of either sign
  kHuge,              // of the order 1e18
  kNearlyFlat,        // varies in the last digits of a float
  kOverflowing,       // squares leave the range of a float
  kWithOutlier,       // one value near the end of 16 bits
  kZero,              // nothing but 0
  kPartnersEcho,      // its partner one volume later
  kPartnersMultiple,  // a linear function of its partner
  kTiny,              // of the order 1e-23 behind one value of 200
};
inline constexpr int kCourseKinds = 14;

[[nodiscard]] const char* nameOf(CourseKind kind);

// Turns an autoregressive course about `mean` into one of a kind. `partner` may be empty or shorter.
// upTo(n): a random number of 0 to n; called once for a place, and once more for a sign.
void applyKind(CourseKind kind, double mean, const Course& partner, const std::function<int(int)>& upTo,
               Course& course);

}  // namespace differential

#endif
