#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "formats/file_error.h"
#include "inspect/shown_map.h"

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

// The range at q; nothing passes: nothing is shown.
void setRangeAt(float threshold, const formats::Map& map, double q, render::SlicePicture& picture) {
  const float factor = map.lowerThreshold > 0 ? map.upperThreshold / map.lowerThreshold : 3.0F;
  const bool anyPasses = std::isfinite(threshold);
  picture.lower = anyPasses ? threshold : HUGE_VALF;
  picture.upper = anyPasses ? factor * threshold : HUGE_VALF;
  picture.caption = thresholdCaption(q, picture.lower);
}

// A map without thresholds keeps its own display range.
void setOwnRange(const formats::Map& map, render::SlicePicture& picture) {
  picture.lower = map.lowerThreshold;
  picture.upper = map.upperThreshold;
  char caption[128];
  std::snprintf(caption, sizeof caption, "shown from %.3g on", static_cast<double>(map.lowerThreshold));
  picture.caption = caption;
}

void setColours(const formats::Map& map, MapColours colours, render::SlicePicture& picture) {
  const bool hasNegative = map.negativeColorFrom != 0 || map.negativeColorTo != 0;
  const bool readable = colours == MapColours::kReadable;
  picture.positive =
      readable ? render::warmScale() : render::ColourScale{map.positiveColorFrom, map.positiveColorTo};
  if (!hasNegative) return;
  picture.negative =
      readable ? render::coldScale() : render::ColourScale{map.negativeColorFrom, map.negativeColorTo};
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

}  // namespace

bool hasThresholds(const formats::Map& map) {
  return !map.thresholds.empty() && (map.thresholds.front() != 0 || map.lowerThreshold == 0);
}

std::string thresholdCaption(double q, float threshold) {
  char caption[128];
  std::snprintf(caption, sizeof caption,
                std::isfinite(threshold) ? "false discovery rate q = %g: threshold %.3g"
                                         : "false discovery rate q = %g: no voxel survives",
                q, static_cast<double>(threshold));
  return caption;
}

std::vector<ShownMap> shownMapsOfSet(const std::string& path, double q, MapColours colours) {
  const formats::MapSet set = formats::loadMapSet(path);
  const std::string stem = std::filesystem::path(path).stem().string();
  std::vector<ShownMap> shown;
  for (const formats::Map& map : set.maps) {
    ShownMap one{stem + "_" + fileNameOf(map.name), {}, {}, {}};
    one.header.size = one.picture.size = set.grid();
    one.picture.affine = set.affine.m;
    one.picture.map = map.values;
    one.picture.title = map.name;
    setColours(map, colours, one.picture);
    if (hasThresholds(map))
      setRangeAt(map.thresholds[thresholdIndex(set, path, q)], map, q, one.picture);
    else
      setOwnRange(map, one.picture);
    shown.push_back(std::move(one));
  }
  return shown;
}

}  // namespace inspect
