#include "simulation/recovery.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace simulation {
namespace {

constexpr std::array<const char*, kDirections> kMapEndings = {": Ref2Vox", ": Vox2Ref", ": Inst"};
constexpr const char* kDifferenceEnding = ": dTAV";

struct ThresholdedMap {
  const std::vector<float>* values;
  float threshold;  // NaN: nothing passes

  [[nodiscard]] bool passes(std::size_t voxel) const {
    const float value = (*values)[voxel];
    return value != 0 && std::fabs(value) >= threshold;
  }
};

struct ConditionMaps {
  std::array<ThresholdedMap, kDirections> directions;
  const std::vector<float>* difference;

  [[nodiscard]] bool computed(std::size_t voxel) const {
    return std::any_of(directions.begin(), directions.end(), [voxel](const ThresholdedMap& map) {
      const float value = (*map.values)[voxel];
      return value != 0 && std::isfinite(value);
    });
  }
};

const formats::Map& findMap(const formats::MapSet& maps, const std::string& name) {
  for (const formats::Map& map : maps.maps)
    if (map.name == name) return map;
  throw std::invalid_argument(fmt::format("there is no map \"{}\"", name));
}

std::size_t thresholdIndex(const formats::MapSet& maps, double q) {
  std::array<char, 32> wanted{};
  std::snprintf(wanted.data(), wanted.size(), "thres q=%1.3f", q);
  const auto found = std::find(maps.thresholdNames.begin(), maps.thresholdNames.end(), wanted.data());
  if (found == maps.thresholdNames.end())
    throw std::invalid_argument(fmt::format("there is no threshold \"{}\"", wanted.data()));
  return static_cast<std::size_t>(found - maps.thresholdNames.begin());
}

ConditionMaps mapsOf(const formats::MapSet& maps, const std::string& condition, double q) {
  const std::size_t index = thresholdIndex(maps, q);
  ConditionMaps result{};
  for (std::size_t d = 0; d < kDirections; ++d) {
    const formats::Map& map = findMap(maps, condition + kMapEndings[d]);
    result.directions[d] = {&map.values, map.thresholds.at(index)};
  }
  result.difference = &findMap(maps, condition + kDifferenceEnding).values;
  return result;
}

// Which measure was planted in a region of a kind; kDirections: none.
std::size_t plantedDirection(Kind kind) {
  switch (kind) {
    case Kind::kDriven:
      return kRef2Vox;
    case Kind::kDriving:
      return kVox2Ref;
    case Kind::kInstantaneous:
      return kInst;
    default:
      return kDirections;
  }
}

bool signFits(Kind kind, double meanSign) {
  if (kind == Kind::kDriven) return meanSign > 0;
  if (kind == Kind::kDriving) return meanSign < 0;
  return true;
}

bool isRecovered(const RegionRecovery& region) {
  const Kind kind = region.planted.model.kind;
  if (kind == Kind::kReference) return true;
  for (std::size_t d = 0; d < kDirections; ++d) {
    const bool planted = d == plantedDirection(kind);
    if (planted ? region.share[d] < kPlantedShare : region.share[d] > kUnplantedShare) return false;
  }
  return region.computed > 0 && signFits(kind, region.meanSign);
}

RegionRecovery assessRegion(const TruthRegion& planted, const ConditionMaps& maps,
                            const std::vector<std::int32_t>& labels) {
  RegionRecovery region;
  region.planted = planted;
  bool present = false;
  for (std::size_t voxel = 0; voxel < labels.size(); ++voxel) {
    if (labels[voxel] != planted.label) continue;
    present = true;
    if (!maps.computed(voxel)) continue;
    ++region.computed;
    for (std::size_t d = 0; d < kDirections; ++d) region.share[d] += maps.directions[d].passes(voxel) ? 1 : 0;
    const float difference = (*maps.difference)[voxel];
    region.meanSign += difference > 0 ? 1 : difference < 0 ? -1 : 0;
  }
  if (!present) throw std::invalid_argument("the label image has no voxel of region " + planted.model.name);
  const auto count = static_cast<double>(std::max<std::size_t>(region.computed, 1));
  for (double& share : region.share) share /= count;
  region.meanSign /= count;
  region.recovered = isRecovered(region);
  return region;
}

void assessOutside(ConditionRecovery& recovery, const ConditionMaps& maps,
                   const std::vector<std::int32_t>& labels) {
  for (std::size_t voxel = 0; voxel < labels.size(); ++voxel) {
    if (labels[voxel] != 0 || !maps.computed(voxel)) continue;
    ++recovery.outsideComputed;
    for (std::size_t d = 0; d < kDirections; ++d)
      recovery.falsePositives[d] += maps.directions[d].passes(voxel) ? 1U : 0U;
  }
  const std::size_t most = *std::max_element(recovery.falsePositives.begin(), recovery.falsePositives.end());
  recovery.outsideQuiet =
      static_cast<double>(most) <= kOutsideShare * static_cast<double>(recovery.outsideComputed);
}

}  // namespace

bool ConditionRecovery::recovered() const {
  return outsideQuiet && std::all_of(regions.begin(), regions.end(),
                                     [](const RegionRecovery& region) { return region.recovered; });
}

std::vector<std::string> conditionsOf(const formats::MapSet& maps) {
  const std::string ending = kMapEndings[kRef2Vox];
  std::vector<std::string> conditions;
  for (const formats::Map& map : maps.maps)
    if (map.name.ends_with(ending)) conditions.push_back(map.name.substr(0, map.name.size() - ending.size()));
  return conditions;
}

ConditionRecovery assess(const formats::MapSet& maps, const std::string& condition, double q,
                         const Truth& truth, const formats::LabelImage& labels) {
  if (!(maps.grid() == labels.header.size))
    throw std::invalid_argument("the maps and the label image differ in size");
  const ConditionMaps conditionMaps = mapsOf(maps, condition, q);
  ConditionRecovery recovery;
  recovery.condition = condition;
  for (const TruthRegion& region : truth.regions)
    recovery.regions.push_back(assessRegion(region, conditionMaps, labels.labels));
  assessOutside(recovery, conditionMaps, labels.labels);
  return recovery;
}

}  // namespace simulation
