// Reading the header of a volume time course (VTC) file, and its voxel grid.
#ifndef TAVMAP_IO_CNVTCFILE_H
#define TAVMAP_IO_CNVTCFILE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "io/grid_size.h"
#include "io/vtc_header.h"

// Reads the header from `file`, which stands at the start of the file, and leaves it at the first
// data value. Versions 2 and up; all numbers are little-endian. A version 2 header has no data
// type: dataType becomes 1 (16-bit). Names longer than 260 characters are cut.
//
// False when the version is below 2, more than one protocol is linked, or the file ends inside the
// header; `header` is then partly filled. `file` stays open in every case.
[[nodiscard]] bool readVTCHeader(std::FILE* file, VTC_Header& header);

// True when the header describes data: resolution and number of volumes at least 1, at least one
// voxel along each axis, and a grid and slices whose sizes fit 31 bits. Nothing else may be
// computed from a header that fails.
[[nodiscard]] bool hasUsableGeometry(const VTC_Header& header);

[[nodiscard]] io::GridSize gridOf(const VTC_Header& header);

// Values in one z-slice: x-size * y-size * volumes.
[[nodiscard]] std::int32_t sliceValues(const VTC_Header& header);

// Bytes of one data value: 4 (floats) or 2 (unsigned integers).
[[nodiscard]] inline std::size_t valueBytes(const VTC_Header& header) {
  return header.dataType == kVtcFloatData ? sizeof(float) : sizeof(std::uint16_t);
}

#endif
