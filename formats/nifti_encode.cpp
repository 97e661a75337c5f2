#include <nifti2_io.h>

#include <algorithm>
#include <cstring>

#include "formats/nifti_affine.h"
#include "formats/nifti_header.h"

namespace formats {
namespace {

template <std::size_t N>
void putText(const std::string& text, char (&field)[N]) {
  std::memcpy(field, text.data(), std::min(text.size(), N - 1));  // the rest is zero already
}

void putTransforms(const ImageHeader& header, nifti_1_header& raw) {
  const NiftiTransforms t = transformsOf(header);
  raw.sform_code = static_cast<short>(t.sformCode);
  raw.qform_code = static_cast<short>(t.qformCode);
  const auto narrow = [](double value) { return static_cast<float>(value); };
  std::transform(t.sform.begin(), t.sform.begin() + 4, raw.srow_x, narrow);
  std::transform(t.sform.begin() + 4, t.sform.begin() + 8, raw.srow_y, narrow);
  std::transform(t.sform.begin() + 8, t.sform.end(), raw.srow_z, narrow);
  std::transform(t.pixdim.begin(), t.pixdim.end(), raw.pixdim, narrow);
  raw.quatern_b = narrow(t.quaternion[0]);
  raw.quatern_c = narrow(t.quaternion[1]);
  raw.quatern_d = narrow(t.quaternion[2]);
  raw.qoffset_x = narrow(t.quaternion[3]);
  raw.qoffset_y = narrow(t.quaternion[4]);
  raw.qoffset_z = narrow(t.quaternion[5]);
}

void putExtents(const ImageHeader& header, nifti_1_header& raw) {
  raw.dim[0] = header.series || header.volumes > 1 ? 4 : 3;
  const int extents[] = {header.size.x, header.size.y, header.size.z, header.volumes, 1, 1, 1};
  for (std::size_t i = 0; i < 7; ++i) raw.dim[i + 1] = static_cast<short>(extents[i]);
  raw.pixdim[4] = static_cast<float>(header.trMs / 1000);
}

// Each extension: its size (a multiple of 16, these eight bytes included), its code, its bytes.
std::string encodeExtensions(const std::vector<HeaderExtension>& extensions) {
  std::string bytes(4, '\0');
  if (!extensions.empty()) bytes[0] = 1;
  for (const auto& extension : extensions) {
    const std::size_t size = (extension.bytes.size() + 8 + 15) / 16 * 16;
    const std::int32_t numbers[2] = {static_cast<std::int32_t>(size), extension.code};
    bytes.append(reinterpret_cast<const char*>(numbers), sizeof numbers);
    bytes.append(extension.bytes).append(size - 8 - extension.bytes.size(), '\0');
  }
  return bytes;
}

}  // namespace

std::string encodeNifti1Header(const ImageHeader& header) {
  nifti_1_header raw;
  std::memset(&raw, 0, sizeof raw);
  raw.sizeof_hdr = static_cast<int>(kNifti1Bytes);
  raw.regular = 'r';  // an old convention that some readers look for
  raw.datatype = static_cast<short>(header.dataType);
  raw.bitpix = static_cast<short>(8 * bytesOf(header.dataType));
  putTransforms(header, raw);
  putExtents(header, raw);
  raw.scl_slope = static_cast<float>(header.slope);
  raw.scl_inter = static_cast<float>(header.intercept);
  raw.xyzt_units = SPACE_TIME_TO_XYZT(NIFTI_UNITS_MM, NIFTI_UNITS_SEC);
  raw.intent_code = static_cast<short>(header.intentCode);
  putText(header.intentName, raw.intent_name);
  putText(header.description, raw.descrip);
  putText("n+1", raw.magic);
  const std::string extensions = encodeExtensions(header.extensions);
  raw.vox_offset = static_cast<float>(kNifti1Bytes + extensions.size());
  return std::string(reinterpret_cast<const char*>(&raw), sizeof raw) + extensions;
}

}  // namespace formats
