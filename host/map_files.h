// The map set as a file, and where its cells lie.
#ifndef TAVMAP_HOST_MAP_FILES_H
#define TAVMAP_HOST_MAP_FILES_H

#include <memory>
#include <string>

#include "formats/affine.h"
#include "host/nr_map_set.h"

namespace host {

class Workspace;

struct Place {
  formats::Affine affine;  // cell index to millimetres
  int spaceCode;           // NIfTI form code of the affine
};

// As the linked VTC's sidecar says when the box is that of the VTC; else as the anatomy's voxels
// when the box is its grid at resolution 1; else in Talairach space.
[[nodiscard]] Place placeOf(const Box& box, const Workspace& workspace);

// A .tav file. Both throw formats::FileError; a file is written whole or not at all.
[[nodiscard]] std::unique_ptr<MapSet> readMaps(const std::string& path);
void writeMaps(const std::string& path, const MapSet& maps, const Place& place);

}  // namespace host

#endif
