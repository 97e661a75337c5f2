#include "live/outcome_taker.h"

#include <algorithm>

#include "tav/vtc_cache.h"

namespace live {
namespace {

template <class Value>
std::vector<Value> gathered(const std::vector<std::uint32_t>& cells, const Value* grid) {
  std::vector<Value> values(cells.size());
  std::transform(cells.begin(), cells.end(), values.begin(),
                 [grid](std::uint32_t cell) { return grid[cell]; });
  return values;
}

}  // namespace

const LiveMap* LiveMaps::of(tav::MapType type) const {
  const auto found =
      std::find_if(maps.begin(), maps.end(), [type](const LiveMap& map) { return map.type == type; });
  return found == maps.end() ? nullptr : &*found;
}

LiveMap OutcomeTaker::taken(const tav::MapOutcome& map) const {
  LiveMap live{map.type, gathered(study_.cells, map.values), {}, map.thresholds};
  if (!map.nullP.empty()) live.p = gathered(study_.cells, map.nullP.data());
  return live;
}

void OutcomeTaker::takeCourse(const tav::VoiTc& course) {
  const auto run = std::find_if(study_.plan.runs.begin(), study_.plan.runs.end(),
                                [&](const study::RunPlan& plan) { return plan.vtcName == course.vtcName; });
  const float* const first = course.tc.elements();
  maps_.courses[run->request.name].assign(first, first + course.tc.nCols);
}

void OutcomeTaker::onCondition(const tav::ConditionOutcome& outcome) {
  maps_.effectiveVolumes = outcome.effectiveTimePoints;
  maps_.status = gathered(study_.cells, outcome.status.data());
  for (const tav::MapOutcome& map : outcome.maps) maps_.maps.push_back(taken(map));
  for (const tav::VoiTc* const course : outcome.courses)
    if (course != nullptr) takeCourse(*course);
}

}  // namespace live
