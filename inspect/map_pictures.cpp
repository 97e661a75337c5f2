#include "inspect/map_pictures.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/map_set.h"
#include "formats/nifti.h"
#include "formats/voi_list.h"
#include "render/slice_picture.h"

namespace inspect {
namespace {

// Which threshold of the set belongs to q. The set keeps names ("thres q=0.050"), not numbers.
std::size_t thresholdIndex(const formats::MapSet& set, const std::string& path, double q) {
  char wanted[32];
  std::snprintf(wanted, sizeof wanted, "thres q=%1.3f", q);
  const auto found = std::find(set.thresholdNames.begin(), set.thresholdNames.end(), wanted);
  if (found != set.thresholdNames.end()) return static_cast<std::size_t>(found - set.thresholdNames.begin());
  std::string known;
  for (const std::string& name : set.thresholdNames) known += (known.empty() ? "" : ", ") + name;
  throw formats::FileError(path, "the maps have no threshold for q = " + std::string(wanted + 8),
                           "They have: " + known);
}

std::vector<std::uint8_t> regionMask(const PictureOptions& options, const formats::ImageHeader& anatomy) {
  std::vector<std::uint8_t> mask;
  if (options.region.empty()) return mask;
  formats::requireSameGrid(formats::readImageHeader(options.labels), options.labels, anatomy,
                           options.anatomy);
  const auto vois = formats::loadVois(options.labels, options.table).list.vois;
  const auto voi =
      std::find_if(vois.begin(), vois.end(), [&](const auto& v) { return v.name == options.region; });
  if (voi == vois.end())
    throw formats::FileError(options.labels, "has no region named " + options.region,
                             "`tavmap info` lists its regions");
  mask.assign(anatomy.size.voxels(), 0);
  for (const formats::VoxelIndex& voxel : voi->voxels) mask[anatomy.size.index(voxel)] = 1;
  return mask;
}

// Maps that are compared with no surrogates have thresholds of 0 and a display range of their own.
bool hasThresholds(const formats::Map& map) {
  return !map.thresholds.empty() && (map.thresholds.front() != 0 || map.lowerThreshold == 0);
}

// The display range at q; a map without thresholds keeps its own. Nothing passes: nothing is shown.
void setRange(const formats::MapSet& set, const formats::Map& map, const PictureOptions& options,
              render::SlicePicture& picture) {
  picture.lower = map.lowerThreshold;
  picture.upper = map.upperThreshold;
  char caption[128];
  std::snprintf(caption, sizeof caption, "shown from %.3g on", static_cast<double>(map.lowerThreshold));
  if (hasThresholds(map)) {
    const float threshold = map.thresholds[thresholdIndex(set, options.maps, options.q)];
    const float factor = map.lowerThreshold > 0 ? map.upperThreshold / map.lowerThreshold : 3.0F;
    const bool anyPasses = std::isfinite(threshold);
    picture.lower = anyPasses ? threshold : HUGE_VALF;
    picture.upper = anyPasses ? factor * threshold : HUGE_VALF;
    std::snprintf(caption, sizeof caption,
                  anyPasses ? "false discovery rate q = %g: threshold %.3g"
                            : "false discovery rate q = %g: no voxel survives",
                  options.q, static_cast<double>(threshold));
  }
  picture.caption = caption;
}

render::SlicePicture pictureOf(const formats::MapSet& set, const formats::Map& map,
                               const formats::Image3D& anatomy, const std::vector<std::uint8_t>& region,
                               const PictureOptions& options) {
  render::SlicePicture picture;
  picture.size = set.grid();
  picture.affine = set.affine.m;
  picture.anatomy = anatomy.values;
  picture.map = map.values;
  picture.reference = region;
  picture.positive = {map.positiveColorFrom, map.positiveColorTo};
  picture.negative = {map.negativeColorFrom, map.negativeColorTo};
  picture.title = map.name + (options.region.empty() ? "" : "   reference: " + options.region);
  picture.slices = options.slices;
  setRange(set, map, options, picture);
  return picture;
}

// "faces: dTAV IT" becomes "faces_dTAV_IT".
std::string fileNameOf(const std::string& mapName) {
  std::string name;
  for (const char c : mapName) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0)
      name += c;
    else if (!name.empty() && name.back() != '_')
      name += '_';
  }
  return name;
}

void requireGridOfMaps(const formats::MapSet& set, const formats::ImageHeader& anatomy,
                       const std::string& path) {
  if (anatomy.size == set.grid()) return;
  throw formats::FileError(
      path, fmt::format("has {} voxels and the maps have {}", toText(anatomy.size), toText(set.grid())),
      "Give an anatomy on the grid of the maps");
}

}  // namespace

std::vector<std::string> drawMapSet(const PictureOptions& options) {
  const formats::MapSet set = formats::loadMapSet(options.maps);
  const formats::Image3D anatomy = formats::readImage(options.anatomy);
  requireGridOfMaps(set, anatomy.header, options.anatomy);
  const auto region = regionMask(options, anatomy.header);
  std::filesystem::create_directories(options.folder);
  const std::string stem = std::filesystem::path(options.maps).stem().string();
  std::vector<std::string> paths;
  for (const formats::Map& map : set.maps) {
    paths.push_back(fmt::format("{}/{}_{}.png", options.folder, stem, fileNameOf(map.name)));
    formats::writeTextFile(paths.back(), render::renderPng(pictureOf(set, map, anatomy, region, options)));
  }
  return paths;
}

}  // namespace inspect
