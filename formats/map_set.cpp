#include "formats/map_set.h"

#include <fmt/core.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "formats/file_error.h"
#include "formats/map_set_json.h"
#include "formats/nifti_stream.h"
#include "formats/nifti_writer.h"

namespace formats {
namespace {

constexpr int kCommentCode = 6;

int cells(std::int32_t start, std::int32_t end, std::int32_t resolution) {
  if (resolution < 1 || end <= start) return 0;
  return static_cast<int>((static_cast<std::int64_t>(end) - start) / resolution);
}

using Values = std::vector<std::span<const float>>;

void requireConsistent(const std::string& path, const MapSet& set, const Values& values) {
  const std::size_t voxels = set.grid().voxels();
  if (voxels == 0)
    throw FileError(path, "the map set has an empty bounding box", "Give a box of at least one cell");
  if (set.maps.empty()) throw FileError(path, "the map set has no maps", "Compute at least one map");
  for (std::size_t i = 0; i < set.maps.size(); ++i) {
    const Map& map = set.maps[i];
    const bool fits = i < values.size() && values[i].size() == voxels;
    if (!fits || map.thresholds.size() != set.thresholdNames.size())
      throw FileError(path, fmt::format("the map \"{}\" does not fit its map set", map.name),
                      "Compute it again");
  }
}

Values valuesOf(const MapSet& set) {
  Values values;
  for (const Map& map : set.maps) values.emplace_back(map.values);
  return values;
}

ImageHeader headerOf(const MapSet& set) {
  ImageHeader header;
  header.size = set.grid();
  header.volumes = static_cast<int>(set.maps.size());
  header.series = true;
  header.affine = header.qform = set.affine;
  header.sformCode = header.qformCode = set.spaceCode;
  header.description = "Tavmap map set";
  header.extensions.push_back({kCommentCode, mapSetToJson(set)});
  return header;
}

const HeaderExtension& extensionOf(const ImageHeader& header, const std::string& path) {
  for (const auto& extension : header.extensions) {
    if (extension.code == kCommentCode && looksLikeMapSet(extension.bytes)) return extension;
  }
  throw FileError(path, "it is an image, but no map set of this program", "Give a .tav file");
}

}  // namespace

GridSize MapSet::grid() const {
  return {cells(xStart, xEnd, resolution), cells(yStart, yEnd, resolution), cells(zStart, zEnd, resolution)};
}

void saveMapSet(const std::string& path, const MapSet& set) {
  saveMapSet(path, set, valuesOf(set));
}

void saveMapSet(const std::string& path, const MapSet& set, const Values& values) {
  requireConsistent(path, set, values);
  NiftiWriter writer(path, headerOf(set));
  for (std::size_t i = 0; i < set.maps.size(); ++i) writer.writeValues(values[i].data(), values[i].size());
  writer.commit();
}

MapSet loadMapSet(const std::string& path) {
  NiftiStream stream(path);
  const ImageHeader& header = stream.header();
  MapSet set = mapSetFromJson(extensionOf(header, path).bytes, path);
  set.affine = header.affine;
  set.spaceCode = header.sformCode;
  if (set.grid() != header.size || set.maps.size() != static_cast<std::size_t>(header.volumes)) {
    throw FileError(path, "its header extension does not fit its data", "Compute the maps again");
  }
  for (auto& map : set.maps) {
    map.values.resize(header.size.voxels());
    stream.readValues(map.values.data(), map.values.size());
  }
  stream.finish();
  return set;
}

}  // namespace formats
