// One map as a picture shows it, from a map set (.tav) or from a statistic map with its sidecar.
#ifndef TAVMAP_INSPECT_SHOWN_MAP_H
#define TAVMAP_INSPECT_SHOWN_MAP_H

#include <string>
#include <vector>

#include "formats/image.h"
#include "formats/map_set.h"
#include "render/slice_picture.h"

namespace inspect {

// kReadable: two hues that colour-blind people tell apart, from the threshold outwards lighter; maps without
// negative values have one of them. kStored: those that a map set keeps.
enum class MapColours { kReadable, kStored };

struct ShownMap {
  std::string file;              // name of its picture, without .png
  std::string reference;         // whose map it is; empty: the file does not say
  formats::ImageHeader header;   // its grid
  render::SlicePicture picture;  // without anatomy and reference
};

// "false discovery rate q = 0.05: threshold 4"; an infinite threshold: no voxel survives.
[[nodiscard]] std::string thresholdCaption(double q, float threshold);

// Maps that are compared with no surrogates have thresholds of 0 and a display range of their own.
[[nodiscard]] bool hasThresholds(const formats::Map& map);

// The maps of a set, in its order. q: false discovery rate whose threshold is shown. Throws
// formats::FileError: for a file that is none, or a q that its maps do not have.
[[nodiscard]] std::vector<ShownMap> shownMapsOfSet(const std::string& path, double q, MapColours colours);

// An effect map that `tavmap run` wrote; thresholds and kind of map from the sidecar beside it. Full colour
// begins at the multiple of the threshold at which map sets have it. Throws formats::FileError, also
// for maps of p-values, and for kStored, since such a file keeps no colours.
[[nodiscard]] ShownMap shownMapOfImage(const std::string& path, double q, MapColours colours);

}  // namespace inspect

#endif
