// Import of a NIfTI time series into a VTC file with a sidecar.
//
// The image keeps its grid: box from 0, resolution 1, cell (x, y, z) = voxel (i, j, k) as stored.
// The series is decompressed once, held in memory or, when it is large, in the output file itself,
// and transposed in chunks from volume-major to time-contiguous order (series_store.h). Voxels outside
// a mask are held nowhere, and large stretches of them are holes of the file.
#ifndef TAVMAP_FORMATS_VTC_IMPORT_H
#define TAVMAP_FORMATS_VTC_IMPORT_H

#include <cstddef>
#include <string>
#include <vector>

#include "formats/atomic_file.h"
#include "formats/image.h"
#include "formats/vtc_writer.h"

namespace formats {

struct ImportOptions {
  std::string maskPath;  // empty: no mask
  VtcType type = VtcType::kFloat32;
  double trMs = 0;         // 0: the header's
  double threshold = 100;  // inclusion threshold: a voxel counts when its first value exceeds it
  int skipVolumes = 0;     // leave out so many volumes at the start
  double scale = 1;        // multiplies every value, before the threshold is looked at
  Durability durability = Durability::kSynced;
  std::size_t memoryBytes = std::size_t{160} << 20U;  // for the series; a larger one waits in the file
};

struct ImportReport {
  ImageHeader image;
  int volumes = 0;
  double trMs = 0;
  double shift = 0;
  std::size_t voxelsIncluded = 0;  // whose first value exceeds the threshold, after the shift
  std::size_t voxelsInMask = 0;    // all voxels when there is no mask
  std::size_t notFinite = 0;       // inside the mask, first value not a number: never included
  double meanChange = 0;           // inside the mask, between the first two volumes, in magnitude
  std::vector<std::string> warnings;
};

// With a mask: voxels outside are 0 throughout, and those inside get one constant added where that
// is needed for every one of them to exceed the threshold at its first time point, so that the
// inclusion threshold selects exactly the mask. Without one: values as they are.
// Throws FileError; then neither file exists (or both older ones stay).
ImportReport importVtc(const std::string& imagePath, const std::string& vtcPath,
                       const ImportOptions& options);

}  // namespace formats

#endif
