// From the coordinates of a region's voxels to cells of a VTC grid.
#ifndef TAVMAP_IO_CRDUTILS_H
#define TAVMAP_IO_CRDUTILS_H

#include <cstdint>
#include <vector>

#include "io/vtc_header.h"

// One distinct cell and the number of the region's voxels that fall into it.
struct voicrd {
  std::int32_t x, y, z;
  std::int32_t n;
};

struct VoiCells {
  std::vector<voicrd> cells;   // in order of first occurrence
  std::int32_t nrOutside = 0;  // voxels outside the VTC's box, in no cell
};

// floor(t + 0.5) for every sign of t: halves go up. Values beyond 32 bits become the nearest one
// that fits (they lie outside every box).
[[nodiscard]] std::int32_t roundHalfUp(double t);

// Writes the anatomical coordinates of the voxels, 3 x nVoxels, into `out`. Talairach coordinates
// (c0, c1, c2) become (128 - c1, 128 - c2, 128 - c0); others are copied.
void toAnatomicalCoordinates(const std::int32_t* voxels, std::int32_t nVoxels, bool talairach,
                             std::int32_t* out);

// The distinct cells of the voxels at these anatomical coordinates. The header's geometry must be
// usable.
[[nodiscard]] VoiCells cellsOfVoxels(const VTC_Header& header, const std::int32_t* coordinates,
                                     std::int32_t nVoxels);

#endif
