// NAME.vtc.json, the sidecar of a VTC that was made from an image: where its cells lie, and what
// was done to its values.
#ifndef TAVMAP_FORMATS_VTC_SIDECAR_H
#define TAVMAP_FORMATS_VTC_SIDECAR_H

#include <optional>
#include <string>

#include "formats/affine.h"

namespace formats {

struct VtcSidecar {
  Affine affine;       // cell index to millimetres, RAS+
  int spaceCode = 1;   // NIfTI form code of the affine
  std::string source;  // file name of the image, without its folder
  std::string mask;    // file name of the mask; empty: none
  double trMs = 0;
  double scale = 1;        // multiplies the image's values: stored = scale * value + shift
  double shift = 0;        // added to every voxel inside the mask
  double threshold = 100;  // the inclusion threshold that the shift was chosen for
};

[[nodiscard]] std::string sidecarPathOf(const std::string& vtcPath);

// Empty when there is no sidecar; throws FileError for one that cannot be understood.
[[nodiscard]] std::optional<VtcSidecar> readVtcSidecar(const std::string& vtcPath);
[[nodiscard]] VtcSidecar parseVtcSidecar(const std::string& text, const std::string& path);
[[nodiscard]] std::string encodeVtcSidecar(const VtcSidecar& sidecar);
void writeVtcSidecar(const std::string& vtcPath, const VtcSidecar& sidecar);

}  // namespace formats

#endif
