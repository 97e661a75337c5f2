// Which directions survive reversed time, of all voxels that pass.
#include <algorithm>
#include <cmath>

#include "live/engine.h"
#include "study/condition_runs.h"
#include "study/direction_check.h"
#include "tav/at_once.h"

namespace live {
namespace {

constexpr std::size_t kVoxelsAtOnce = 8;  // between two looks at the flag: milliseconds

// Of the voxels outside the reference that pass at the largest q, as a run tests them: their places among the
// cells.
std::vector<std::size_t> passing(const LiveMaps& maps) {
  const LiveMap* const dtav = maps.of(tav::DTAV);
  std::vector<std::size_t> places;
  if (dtav == nullptr || dtav->thresholds.empty() || !dtav->thresholds.back().anyPasses()) return places;
  const float threshold = dtav->thresholds.back().threshold;
  for (std::size_t i = 0; i < dtav->values.size(); ++i) {
    const float value = dtav->values[i];
    if (!maps.isReference[i] && value != 0 && std::abs(value) >= threshold) places.push_back(i);
  }
  return places;
}

study::ReferenceCourses coursesOf(const LiveMaps& maps, const study::StudyPlan& plan) {
  study::ReferenceCourses courses;
  for (const study::RunPlan& run : plan.runs) {
    const auto course = maps.courses.find(run.request.name);
    if (course != maps.courses.end()) courses[{plan.regions[0].name, run.vtcName}] = course->second;
  }
  return courses;
}

}  // namespace

std::vector<std::uint8_t> Engine::directions(const LiveMaps& maps, const std::atomic<bool>& cancel) const {
  const study::StudyPlan plan = planFor(*study_, maps.ask);
  const std::vector<std::size_t> places = passing(maps);
  const study::ReferenceCourses courses = coursesOf(maps, plan);
  std::vector<std::uint8_t> codes(study_->cells.size(), 0);
  const std::size_t parts = (places.size() + kVoxelsAtOnce - 1) / kVoxelsAtOnce;
  const auto lanes = static_cast<std::size_t>(std::max(threads_, 1));
  tav::atOnce(std::min(lanes, parts), [&](std::size_t lane) {
    std::vector<study::ConditionRun> runs = study::conditionRuns(
        plan, 0, 0, courses, [this](const study::RunPlan& run) { return study_->coursesOf(run); });
    for (std::size_t part = lane; part < parts; part += lanes) {
      tav::stopIf(&cancel);
      const std::size_t end = std::min(places.size(), (part + 1) * kVoxelsAtOnce);
      std::vector<std::size_t> voxels;
      for (std::size_t i = part * kVoxelsAtOnce; i < end; ++i) voxels.push_back(study_->cells[places[i]]);
      const auto found =
          study::testDirections(runs, plan.order, study::seedOf(plan, 0), voxels, [](double) {});
      for (std::size_t i = 0; i < found.size(); ++i)
        codes[places[part * kVoxelsAtOnce + i]] = static_cast<std::uint8_t>(found[i]);
    }
  });
  return codes;
}

}  // namespace live
