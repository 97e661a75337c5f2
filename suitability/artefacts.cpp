#include "suitability/artefacts.h"

#include <algorithm>
#include <cmath>

#include "suitability/robust.h"

namespace suitability {
namespace {

constexpr double kJump = 5;      // robust standard deviations of the differences
constexpr double kOffLevel = 3;  // robust standard deviations of the level
constexpr double kSettled = 1;   // the same
constexpr double kShareWithArtefact = 0.2;
constexpr int kFewestForArtefacts = 40;
constexpr std::size_t kJumpsWithin = 3;
constexpr std::size_t kLevelFirst = 10, kLevelEnd = 110;  // volumes that show the level
constexpr std::size_t kMostTransient = 20;

// One flag per volume; the first has no jump.
std::vector<bool> jumpsOf(const Series& x) {
  Series differences;
  for (std::size_t t = 1; t < x.size(); ++t) differences.push_back(x[t] - x[t - 1]);
  const double limit = kJump * robustSd(differences);
  std::vector<bool> jumps(x.size(), false);
  if (!(limit > 0)) return jumps;
  for (std::size_t t = 1; t < x.size(); ++t) jumps[t] = std::abs(differences[t - 1]) > limit;
  return jumps;
}

// One flag per volume: whether the reference and many voxels jump.
std::vector<bool> commonJumps(const Courses& courses) {
  std::vector<bool> common = jumpsOf(courses.reference);
  std::vector<std::size_t> counts(common.size());
  for (const Series& voxel : courses.voxels) {
    const std::vector<bool> jumps = jumpsOf(voxel);
    for (std::size_t t = 0; t < counts.size(); ++t) counts[t] += jumps[t] ? 1U : 0U;
  }
  for (std::size_t t = 0; t < counts.size(); ++t)
    common[t] = common[t] && courses.areMany(counts[t], kShareWithArtefact);
  return common;
}

// The start in standard deviations off the level, positive at first; empty for a series without transient.
Series startOf(const Series& x) {
  const auto at = [&x](std::size_t t) { return x.begin() + static_cast<std::ptrdiff_t>(t); };
  const Series later(at(kLevelFirst), at(std::min(kLevelEnd, x.size())));
  const double level = median(later), sd = std::copysign(robustSd(later), x[0] - level);
  const std::vector<bool> jumps = jumpsOf(x);
  const bool jumpsSoon =
      std::find(jumps.begin(), jumps.begin() + kJumpsWithin + 1, true) != jumps.begin() + kJumpsWithin + 1;
  if (!jumpsSoon || sd == 0 || !((x[0] - level) / sd > kOffLevel)) return {};
  Series start(at(0), at(kMostTransient));
  for (double& value : start) value = (value - level) / sd;
  return start;
}

int volumesUntilSettled(const std::vector<Series>& starts) {
  std::size_t t = 0;
  for (; t < kMostTransient; ++t) {
    Series values;
    for (const Series& start : starts) values.push_back(start[t]);
    if (median(values) <= kSettled) break;
  }
  return static_cast<int>(t);
}

}  // namespace

int countTransientVolumes(const Courses& courses) {
  if (courses.length() < kFewestForArtefacts || startOf(courses.reference).empty()) return 0;
  std::vector<Series> starts;
  for (const Series& voxel : courses.voxels)
    if (Series start = startOf(voxel); !start.empty()) starts.push_back(std::move(start));
  if (!courses.areMany(starts.size(), kShareWithArtefact)) return 0;
  return volumesUntilSettled(starts);
}

std::vector<int> findSpikes(const Courses& courses, int transient) {
  std::vector<int> volumes;
  if (courses.length() < kFewestForArtefacts) return volumes;
  const std::vector<bool> jumps = commonJumps(courses);
  for (std::size_t t = 1; t < jumps.size(); ++t) {
    const int volume = static_cast<int>(t);
    // The way out of the transient is a jump too.
    if (jumps[t] && !jumps[t - 1] && volume > transient && courses.isUsed(volume)) volumes.push_back(volume);
  }
  return volumes;
}

}  // namespace suitability
