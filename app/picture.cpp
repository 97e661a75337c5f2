// `tavmap picture`: the maps of a set as PNG mosaics over the anatomy.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "formats/atomic_file.h"
#include "formats/map_set.h"
#include "formats/nifti.h"
#include "formats/voi_list.h"
#include "render/slice_picture.h"

namespace app {
namespace {

struct Options {
  std::string maps, folder, anatomy, labels, table, region;
  double q = 0.05;
  int slices = 15;
};

// Which threshold of the set belongs to q. The set keeps names ("thres q=0.050"), not numbers.
std::size_t thresholdIndex(const formats::MapSet& set, double q) {
  char wanted[32];
  std::snprintf(wanted, sizeof wanted, "thres q=%1.3f", q);
  const auto found = std::find(set.thresholdNames.begin(), set.thresholdNames.end(), wanted);
  if (found != set.thresholdNames.end()) return static_cast<std::size_t>(found - set.thresholdNames.begin());
  std::string known;
  for (const std::string& name : set.thresholdNames) known += (known.empty() ? "" : ", ") + name;
  throw UsageError("the maps have no threshold for q = " + std::string(wanted + 8) + "; they have: " + known);
}

std::vector<std::uint8_t> regionMask(const Options& options, const formats::ImageHeader& anatomy) {
  std::vector<std::uint8_t> mask;
  if (options.region.empty()) return mask;
  formats::requireSameGrid(formats::readImageHeader(options.labels), options.labels, anatomy, options.anatomy);
  const auto vois = formats::loadVois(options.labels, options.table).list.vois;
  const auto voi = std::find_if(vois.begin(), vois.end(), [&](const auto& v) { return v.name == options.region; });
  if (voi == vois.end()) throw UsageError(options.labels + " has no region named " + options.region);
  mask.assign(anatomy.size.voxels(), 0);
  for (const formats::VoxelIndex& v : voi->voxels) {
    const auto x = static_cast<std::size_t>(v[0]), y = static_cast<std::size_t>(v[1]), z = static_cast<std::size_t>(v[2]);
    mask[(z * static_cast<std::size_t>(anatomy.size.y) + y) * static_cast<std::size_t>(anatomy.size.x) + x] = 1;
  }
  return mask;
}

// Maps that are compared with no surrogates have thresholds of 0 and a display range of their own.
bool hasThresholds(const formats::Map& map) {
  return !map.thresholds.empty() && (map.thresholds.front() != 0 || map.lowerThreshold == 0);
}

// The display range at q; a map without thresholds keeps its own. Nothing passes: nothing is shown.
void setRange(const formats::MapSet& set, const formats::Map& map, double q, render::SlicePicture& picture) {
  picture.lower = map.lowerThreshold;
  picture.upper = map.upperThreshold;
  char caption[128];
  std::snprintf(caption, sizeof caption, "shown from %.3g on", static_cast<double>(map.lowerThreshold));
  if (hasThresholds(map)) {
    const float threshold = map.thresholds[thresholdIndex(set, q)];
    const float factor = map.lowerThreshold > 0 ? map.upperThreshold / map.lowerThreshold : 3.0F;
    const bool anyPasses = std::isfinite(threshold);
    picture.lower = anyPasses ? threshold : HUGE_VALF;
    picture.upper = anyPasses ? factor * threshold : HUGE_VALF;
    std::snprintf(caption, sizeof caption, anyPasses ? "false discovery rate q = %g: threshold %.3g"
                                                     : "false discovery rate q = %g: no voxel survives",
                  q, static_cast<double>(threshold));
  }
  picture.caption = caption;
}

render::SlicePicture pictureOf(const formats::MapSet& set, const formats::Map& map, const formats::Image3D& anatomy,
                               const std::vector<std::uint8_t>& region, const Options& options) {
  const formats::GridSize grid = set.grid();
  render::SlicePicture picture;
  picture.dims = {grid.x, grid.y, grid.z};
  picture.affine = set.affine.m;
  picture.anatomy = anatomy.values;
  picture.map = map.values;
  picture.reference = region;
  picture.positive = {map.positiveColorFrom, map.positiveColorTo};
  picture.negative = {map.negativeColorFrom, map.negativeColorTo};
  picture.title = map.name + (options.region.empty() ? "" : "   reference: " + options.region);
  picture.slices = options.slices;
  setRange(set, map, options.q, picture);
  return picture;
}

// "faces: dTAV IT" becomes "faces_dTAV_IT".
std::string fileNameOf(const std::string& mapName) {
  std::string name;
  for (const char c : mapName) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) name += c;
    else if (!name.empty() && name.back() != '_') name += '_';
  }
  return name;
}

void run(const Options& options) {
  if (options.region.empty() != options.labels.empty()) {
    throw UsageError("--labels and --region belong together: the image that names the regions, and one of its names");
  }
  const formats::MapSet set = formats::loadMapSet(options.maps);
  const formats::Image3D anatomy = formats::readImage(options.anatomy);
  if (!(anatomy.header.size == set.grid())) {
    throw UsageError(options.anatomy + " has " + toText(anatomy.header.size) + " voxels and the maps have " +
                     toText(set.grid()) + "; give an anatomy on the grid of the maps");
  }
  const auto region = regionMask(options, anatomy.header);
  std::filesystem::create_directories(options.folder);
  const std::string stem = std::filesystem::path(options.maps).stem().string();
  for (const formats::Map& map : set.maps) {
    const std::string path = options.folder + "/" + stem + "_" + fileNameOf(map.name) + ".png";
    formats::writeTextFile(path, render::renderPng(pictureOf(set, map, anatomy, region, options)));
    std::cout << path << '\n';
  }
}

}  // namespace

void addPictureCommand(CLI::App& program) {
  auto options = std::make_shared<Options>();
  CLI::App* verb = program.add_subcommand("picture", "Draw the maps of a set over the anatomy, one PNG each");
  verb->footer(
      "Example:\n  tavmap picture maps_LH-V1.tav pictures --anatomy t1.nii.gz --labels dseg.nii.gz --region LH-V1");
  verb->add_option("MAPS", options->maps, "Map set (.tav)")->required();
  verb->add_option("FOLDER", options->folder, "Where the pictures go; made if missing")->required();
  verb->add_option("--anatomy", options->anatomy, "Image on the grid of the maps (NIfTI)")->required();
  verb->add_option("--labels", options->labels, "Label image or VOI list that holds the reference region");
  verb->add_option("--table", options->table, "Names of the labels (.tsv); default: the one beside the image");
  verb->add_option("--region", options->region, "Reference region to outline");
  verb->add_option("--q", options->q, "False discovery rate whose threshold is shown")->capture_default_str();
  verb->add_option("--slices", options->slices, "Slices per picture, at most")
      ->check(CLI::Range(1, 200))
      ->capture_default_str();
  verb->callback([options] { run(*options); });
}

}  // namespace app
