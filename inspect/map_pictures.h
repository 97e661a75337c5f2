// Pictures of maps: each a mosaic of slices over the anatomy.
#ifndef TAVMAP_INSPECT_MAP_PICTURES_H
#define TAVMAP_INSPECT_MAP_PICTURES_H

#include <string>
#include <vector>

#include "inspect/shown_map.h"

namespace inspect {

struct PictureOptions {
  std::vector<std::string> maps;  // map sets (.tav), effect maps (NIfTI) with their sidecars
  std::string folder;             // where the pictures go; made if missing
  std::string anatomy;            // image on the grid of the maps
  std::string labels;             // label image or VOI list that holds the region; empty: none
  std::string table;              // names of the labels; empty: the one beside the image
  std::string region;             // outlined; empty: none
  double q = 0.05;                // false discovery rate whose threshold is shown
  int slices = 15;                // at most, per picture
  MapColours colours = MapColours::kReadable;
};

// Draws every map of every file and returns the paths of the pictures in that order. Throws
// formats::FileError: for files that cannot be read or written, grids that differ, a region or a
// q-value that the files do not have.
[[nodiscard]] std::vector<std::string> drawMaps(const PictureOptions& options);

}  // namespace inspect

#endif
