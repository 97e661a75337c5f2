#include "study/usable_region.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "formats/vtc_sidecar.h"
#include "prepare/cautions.h"
#include "request/problem.h"
#include "study/prepared_courses.h"

namespace study {
namespace {

enum class Course { kUsable, kNotFinite, kZero };
constexpr std::array<const char*, 3> kReasonWords = {"",
                                                     "with values that are not finite in single precision",
                                                     "that are 0 throughout, as outside the field of view"};

std::set<std::string> sourceRuns(const StudyPlan& plan) {
  std::set<std::string> names;
  for (const PlannedCondition& condition : plan.conditions) {
    for (const PlannedSet& set : condition.sets) names.insert(set.source);
  }
  return names;
}

// What was 0 in the image has become the constant that the import adds.
bool isZero(const std::vector<float>& course, double shift) {
  constexpr double kRounding = 1e-6;
  const double first = static_cast<double>(course.front());
  const bool constant =
      std::all_of(course.begin(), course.end(), [&](float value) { return value == course.front(); });
  return constant && std::abs(first - shift) <= kRounding * std::abs(shift);
}

Course judge(const std::vector<float>& course, double shift) {
  if (!std::all_of(course.begin(), course.end(), [](float value) { return std::isfinite(value); }))
    return Course::kNotFinite;
  return isZero(course, shift) ? Course::kZero : Course::kUsable;
}

// The voxels of a region that are left, and how many were left out for which reason.
class Sieve {
 public:
  Sieve(const StudyPlan& plan, const Region& region)
      : plan_(plan), region_(region), courses_(static_cast<std::size_t>(region.voxels()), Course::kUsable) {}

  void lookAt(const RunPlan& run, PreparedCourses prepared, double shift) {
    bool isAny = false;
    for (std::size_t i = 0; i < courses_.size(); ++i) {
      if (courses_[i] != Course::kUsable) continue;
      courses_[i] = judge(prepared.read(indexOf(i)), shift);
      isAny = isAny || courses_[i] != Course::kUsable;
    }
    if (isAny) runs_ += fmt::format("{}'{}'", runs_.empty() ? "" : ", ", run.request.name);
  }

  [[nodiscard]] UsableRegion result() const {
    UsableRegion usable{region_, {}};
    const auto left = std::count(courses_.begin(), courses_.end(), Course::kUsable);
    const auto lost = static_cast<std::ptrdiff_t>(courses_.size()) - left;
    if (lost == 0) return usable;
    const std::string what =
        fmt::format("reference '{}': {} of {} voxels", region_.name, lost, courses_.size());
    if (2 * left < static_cast<std::ptrdiff_t>(courses_.size())) {
      throw InputError(fmt::format(
          "{} have no course ({}; run {}), and what is left does not stand for it; take another reference, "
          "or repair the images",
          what, reasons(), runs_));
    }
    usable.region.coordinates = coordinatesLeft();
    usable.notes = {fmt::format("{} are left out, {} (run {})", what, reasons(), runs_)};
    const std::string small = smallReferenceCaution(region_.name, usable.region.voxels());
    if (!small.empty()) usable.notes.push_back(small);
    return usable;
  }

 private:
  [[nodiscard]] std::size_t indexOf(std::size_t voxel) const {
    const std::int32_t* const at = &region_.coordinates[3 * voxel];
    return plan_.runs[0].grid.size.index(at[0], at[1], at[2]);
  }
  [[nodiscard]] std::vector<std::int32_t> coordinatesLeft() const {
    std::vector<std::int32_t> left;
    for (std::size_t i = 0; i < courses_.size(); ++i) {
      const std::int32_t* const at = &region_.coordinates[3 * i];
      if (courses_[i] == Course::kUsable) left.insert(left.end(), at, at + 3);
    }
    return left;
  }
  [[nodiscard]] std::string reasons() const {
    std::string text;
    for (const Course reason : {Course::kNotFinite, Course::kZero}) {
      const auto count = std::count(courses_.begin(), courses_.end(), reason);
      if (count == 0) continue;
      text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count,
                          kReasonWords[static_cast<std::size_t>(reason)]);
    }
    return text;
  }

  const StudyPlan& plan_;
  const Region& region_;
  std::vector<Course> courses_;
  std::string runs_;  // that have such voxels
};

}  // namespace

UsableRegion usableRegion(const StudyPlan& plan, std::size_t region, const OpenCourses& open,
                          const std::function<double(const RunPlan&)>& shiftOf) {
  if (plan.request.settings.method == Method::kPlugin) return {plan.regions[region], {}};
  Sieve sieve(plan, plan.regions[region]);
  const std::set<std::string> sources = sourceRuns(plan);
  for (const RunPlan& run : plan.runs) {
    if (sources.count(run.request.name) > 0) sieve.lookAt(run, open(run), shiftOf(run));
  }
  return sieve.result();
}

UsableRegion usableRegion(const StudyPlan& plan, std::size_t region) {
  const auto vtcOf = [&plan](const RunPlan& run) { return plan.workFolder / run.vtcName; };
  return usableRegion(
      plan, region, [&](const RunPlan& run) { return PreparedCourses(vtcOf(run)); },
      [&](const RunPlan& run) {
        const auto sidecar = formats::readVtcSidecar(vtcOf(run).string());
        return sidecar ? sidecar->shift : 0.0;
      });
}

std::vector<UsableRegion> usableRegions(const StudyPlan& plan, const std::vector<std::size_t>& regions) {
  std::vector<UsableRegion> usable;
  for (const std::size_t region : regions) usable.push_back(usableRegion(plan, region));
  return usable;
}

}  // namespace study
