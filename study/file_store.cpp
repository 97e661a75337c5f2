#include "study/file_store.h"

#include <fmt/core.h>

#include <utility>

#include "formats/map_set.h"
#include "request/problem.h"

namespace study {
namespace {

formats::VtcSidecar placeOf(const std::filesystem::path& vtc) {
  auto sidecar = formats::readVtcSidecar(vtc.string());
  if (!sidecar)
    throw RunError(
        fmt::format("{}: the file is missing, so nobody knows where the voxels of the prepared run lie. "
                    "Remove {} and repeat the command",
                    formats::sidecarPathOf(vtc.string()), vtc.string()));
  return std::move(*sidecar);
}

// Without its values.
formats::Map storedMap(const tav::MapHeader& header) {
  formats::Map stored;
  stored.name = header.name;
  stored.kind = tav::kDirectedInfluence;
  stored.lowerThreshold = header.lowerThreshold, stored.upperThreshold = header.upperThreshold;
  stored.positiveColorFrom = header.positive.from, stored.positiveColorTo = header.positive.to;
  stored.negativeColorFrom = header.negative.from, stored.negativeColorTo = header.negative.to;
  stored.useColors = true;
  stored.thresholds = header.thresholds;
  return stored;
}

// Without its maps.
formats::MapSet storedSet(const tav::MapSetShape& shape, const formats::VtcSidecar& place) {
  formats::MapSet stored;
  stored.xStart = shape.box.xStart, stored.xEnd = shape.box.xEnd;
  stored.yStart = shape.box.yStart, stored.yEnd = shape.box.yEnd;
  stored.zStart = shape.box.zStart, stored.zEnd = shape.box.zEnd;
  stored.resolution = shape.box.resolution;
  stored.affine = place.affine;
  stored.spaceCode = place.spaceCode;
  stored.thresholdNames = shape.thresholdNames;
  return stored;
}

}  // namespace

FileStore::FileStore(std::filesystem::path folder, const std::filesystem::path& vtc)
    : folder_(std::move(folder)), place_(placeOf(vtc)) {}

void FileStore::saveMaps(const std::string& path) {
  formats::MapSet stored = storedSet(shape(), place_);
  std::vector<std::span<const float>> values;
  for (const Map& map : maps()) {
    stored.maps.push_back(storedMap(map.header));
    values.emplace_back(map.values);
  }
  formats::saveMapSet((folder_ / path).string(), stored, values);
}

std::string FileStore::saveLog(const std::string& path, const std::string& text) {
  logFile_ = path;
  logText_ = text;
  return "";
}

}  // namespace study
