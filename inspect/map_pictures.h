// Pictures of a map set: every map as a mosaic of slices over the anatomy.
#ifndef TAVMAP_INSPECT_MAP_PICTURES_H
#define TAVMAP_INSPECT_MAP_PICTURES_H

#include <string>
#include <vector>

namespace inspect {

struct PictureOptions {
  std::string maps;     // map set (.tav)
  std::string folder;   // where the pictures go; made if missing
  std::string anatomy;  // image on the grid of the maps
  std::string labels;   // label image or VOI list that holds the region; empty: none
  std::string table;    // names of the labels; empty: the one beside the image
  std::string region;   // outlined; empty: none
  double q = 0.05;      // false discovery rate whose threshold is shown
  int slices = 15;      // at most, per picture
};

// Draws every map of the set and returns the paths of the pictures in the order of the maps. Throws
// formats::FileError: for files that cannot be read or written, grids that differ, a region or a
// q-value that the files do not have.
[[nodiscard]] std::vector<std::string> drawMapSet(const PictureOptions& options);

}  // namespace inspect

#endif
