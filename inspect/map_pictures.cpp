#include "inspect/map_pictures.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <utility>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/file_kinds.h"
#include "formats/nifti.h"
#include "formats/voi_list.h"
#include "render/slice_picture.h"

namespace inspect {
namespace {

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

std::vector<ShownMap> shownMaps(const std::string& path, const PictureOptions& options) {
  if (!formats::isNiftiName(path)) return shownMapsOfSet(path, options.q, options.colours);
  std::vector<ShownMap> shown;
  shown.push_back(shownMapOfImage(path, options.q, options.colours));
  return shown;
}

// Of a map set the size alone: one that lies where its host says so need not share the image's affine.
void requireGridOf(const std::string& path, const ShownMap& map, const formats::ImageHeader& anatomy,
                   const std::string& anatomyPath) {
  if (formats::isNiftiName(path)) return formats::requireSameGrid(anatomy, anatomyPath, map.header, path);
  if (anatomy.size == map.header.size) return;
  throw formats::FileError(
      anatomyPath,
      fmt::format("has {} voxels and the maps have {}", toText(anatomy.size), toText(map.header.size)),
      "Give an anatomy on the grid of the maps");
}

// What a title says of the reference, and of an outlined region that is not the reference.
std::string regionsText(const std::string& reference, const std::string& outlined) {
  std::string text;
  if (!reference.empty()) text += "   reference: " + reference;
  if (!outlined.empty() && outlined != reference) text += "   outlined: " + outlined;
  return text;
}

std::string drawn(ShownMap map, const formats::Image3D& anatomy, const std::vector<std::uint8_t>& region,
                  const PictureOptions& options) {
  map.picture.anatomy = anatomy.values;
  map.picture.reference = region;
  map.picture.title += regionsText(map.reference.empty() ? options.region : map.reference, options.region);
  map.picture.slices = options.slices;
  std::string path = fmt::format("{}/{}.png", options.folder, map.file);
  formats::writeTextFile(path, render::renderPng(map.picture));
  return path;
}

}  // namespace

std::vector<std::string> drawMaps(const PictureOptions& options) {
  const formats::Image3D anatomy = formats::readImage(options.anatomy);
  const auto region = regionMask(options, anatomy.header);
  std::vector<std::string> paths;
  for (const std::string& file : options.maps) {
    for (ShownMap& map : shownMaps(file, options)) {
      requireGridOf(file, map, anatomy.header, options.anatomy);
      std::filesystem::create_directories(options.folder);
      paths.push_back(drawn(std::move(map), anatomy, region, options));
    }
  }
  return paths;
}

}  // namespace inspect
