// Map sets: the maps of one reference region with their thresholds and colours, and their file
// form .tav.
//
// A .tav file is a NIfTI-1 image (x, y, z, map; float32) that any NIfTI reader opens. Its header
// extension (code 6) holds what an image has no place for, as JSON.
#ifndef TAVMAP_FORMATS_MAP_SET_H
#define TAVMAP_FORMATS_MAP_SET_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "formats/image.h"

namespace formats {

struct Map {
  std::string name;
  std::int32_t kind = 0;
  float lowerThreshold = 0, upperThreshold = 0;  // display range
  // 24-bit colours, red in the lowest byte.
  std::int32_t positiveColorFrom = 0, positiveColorTo = 0;
  std::int32_t negativeColorFrom = 0, negativeColorTo = 0;
  bool useColors = false;
  std::vector<float> thresholds;  // one per name of the set; NaN (null in JSON): nothing passes
  std::vector<float> values;      // [z][y][x]
};

struct MapSet {
  // Bounding box in anatomical coordinates, ends exclusive, and the edge of one cell.
  std::int32_t xStart = 0, xEnd = 0, yStart = 0, yEnd = 0, zStart = 0, zEnd = 0;
  std::int32_t resolution = 1;
  Affine affine;      // cell index to millimetres
  int spaceCode = 2;  // NIfTI form code of the affine: 1 scanner, 2 aligned, 3 Talairach, 4 MNI
  std::string engineVersion;
  std::vector<std::string> thresholdNames;  // "thres q=0.050"
  std::vector<Map> maps;

  [[nodiscard]] GridSize grid() const;
};

// Replaces the file as a whole. Throws FileError; also for a set without maps or with a map whose
// size is not the grid's.
void saveMapSet(const std::string& path, const MapSet& set);
// The same with values that stand elsewhere, one span per map; those in `set` are not looked at.
void saveMapSet(const std::string& path, const MapSet& set,
                const std::vector<std::span<const float>>& values);

// Throws FileError for a file that is no map set, or whose extension and data disagree.
[[nodiscard]] MapSet loadMapSet(const std::string& path);

}  // namespace formats

#endif
