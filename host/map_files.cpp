#include "host/map_files.h"

#include <algorithm>
#include <cstring>

#include "formats/map_set.h"
#include "formats/vtc_export.h"
#include "host/fields.h"
#include "host/workspace.h"

namespace host {
namespace {

constexpr int kTalairachSpace = 3;

bool isGridOf(const Box& box, const formats::GridSize& size) {
  return box == Box{{0, 0, 0}, {size.x, size.y, size.z}, 1};
}

int spaceCodeOf(const formats::ImageHeader& header) {
  return header.sformCode > 0 ? header.sformCode : std::max(header.qformCode, 1);
}

// Without its values.
formats::Map storedMap(const MapSet::Map& map) {
  const NR_VMP_Header& header = map.header;
  formats::Map stored;
  stored.name = header.name;
  stored.kind = header.kind;
  stored.lowerThreshold = header.lowerThreshold, stored.upperThreshold = header.upperThreshold;
  stored.positiveColorFrom = header.positiveColorFrom, stored.positiveColorTo = header.positiveColorTo;
  stored.negativeColorFrom = header.negativeColorFrom, stored.negativeColorTo = header.negativeColorTo;
  stored.useColors = header.useColors != 0;
  stored.thresholds.assign(map.thresholds.begin(), map.thresholds.end());
  return stored;
}

void fillMap(const formats::Map& stored, MapSet::Map& map) {
  NR_VMP_Header& header = map.header;
  fillField(stored.name, header.name);
  header.kind = stored.kind;
  header.lowerThreshold = stored.lowerThreshold, header.upperThreshold = stored.upperThreshold;
  header.positiveColorFrom = stored.positiveColorFrom, header.positiveColorTo = stored.positiveColorTo;
  header.negativeColorFrom = stored.negativeColorFrom, header.negativeColorTo = stored.negativeColorTo;
  header.useColors = stored.useColors ? 1 : 0;
  std::copy(stored.thresholds.begin(), stored.thresholds.end(), map.thresholds.begin());
  std::copy(stored.values.begin(), stored.values.end(), map.values.begin());
}

}  // namespace

Place placeOf(const Box& box, const Workspace& workspace) {
  if (workspace.vtc() && boxOf(workspace.vtc()->header) == box) {
    const formats::VtcPlace place = formats::placeOf(workspace.vtc()->path, workspace.vtc()->header);
    if (place.fromSidecar) return {place.affine, place.spaceCode};
  }
  if (workspace.anatomy() && isGridOf(box, workspace.anatomy()->header.size))
    return {workspace.anatomy()->header.affine, spaceCodeOf(workspace.anatomy()->header)};
  return {formats::talairachAffine(box.start[0], box.start[1], box.start[2], box.resolution),
          kTalairachSpace};
}

std::unique_ptr<MapSet> readMaps(const std::string& path) {
  const formats::MapSet stored = formats::loadMapSet(path);
  const Box box{{stored.xStart, stored.yStart, stored.zStart},
                {stored.xEnd, stored.yEnd, stored.zEnd},
                stored.resolution};
  auto maps = std::make_unique<MapSet>(box, static_cast<int>(stored.maps.size()),
                                       static_cast<int>(stored.thresholdNames.size()));
  for (std::size_t i = 0; i < stored.thresholdNames.size(); ++i)
    maps->setThresholdName(i, stored.thresholdNames[i]);
  for (std::size_t i = 0; i < stored.maps.size(); ++i) fillMap(stored.maps[i], maps->maps()[i]);
  return maps;
}

void writeMaps(const std::string& path, const MapSet& maps, const Place& place) {
  const Box& box = maps.box();
  formats::MapSet stored;
  stored.xStart = box.start[0], stored.xEnd = box.end[0];
  stored.yStart = box.start[1], stored.yEnd = box.end[1];
  stored.zStart = box.start[2], stored.zEnd = box.end[2];
  stored.resolution = box.resolution;
  stored.affine = place.affine;
  stored.spaceCode = place.spaceCode;
  for (std::size_t i = 0; i < maps.nrOfThresholds(); ++i)
    stored.thresholdNames.push_back(maps.thresholdName(i));
  std::vector<std::span<const float>> values;
  for (const MapSet::Map& map : maps.maps()) {
    stored.maps.push_back(storedMap(map));
    values.emplace_back(map.values.begin(), map.values.end());
  }
  formats::saveMapSet(path, stored, values);
}

}  // namespace host
