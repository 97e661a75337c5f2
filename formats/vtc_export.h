// Export of a VTC file as a NIfTI time series.
#ifndef TAVMAP_FORMATS_VTC_EXPORT_H
#define TAVMAP_FORMATS_VTC_EXPORT_H

#include <cstddef>
#include <string>

#include "formats/affine.h"
#include "io/vtc_header.h"

namespace formats {

// The header of a VTC file whose size fits its data. Throws FileError.
[[nodiscard]] VTC_Header readVtcFileHeader(const std::string& path);

struct VtcPlace {
  Affine affine;
  int spaceCode = 3;
  bool fromSidecar = false;
};
// Where the cells of a VTC lie: as its sidecar says, else in Talairach space.
[[nodiscard]] VtcPlace placeOf(const std::string& vtcPath, const VTC_Header& header);

// Values as stored, less the sidecar's shift and over its scale (voxels outside the mask stay 0). Reads the
// file once per `memoryBytes` of output.
void exportVtc(const std::string& vtcPath, const std::string& imagePath,
               std::size_t memoryBytes = std::size_t{128} << 20U);

}  // namespace formats

#endif
