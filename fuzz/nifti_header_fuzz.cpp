// NIfTI files of any bytes: an image or a FileError.
#include <cstddef>
#include <cstdint>
#include <string>

#include "formats/file_error.h"
#include "formats/nifti_header.h"

namespace {

// What the decoder promises to the code behind it.
void requirePromises(const formats::NiftiLayout& layout) {
  const auto& header = layout.header;
  const bool extents = header.size.x >= 1 && header.size.y >= 1 && header.size.z >= 1 && header.volumes >= 1;
  const std::uint64_t bytes = static_cast<std::uint64_t>(header.size.voxels()) *
                              static_cast<std::uint64_t>(header.volumes) * formats::bytesOf(header.dataType);
  const double size = formats::determinant(header.affine);
  if (!extents || bytes != layout.dataBytes || !(size < 0 || size > 0)) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  try {
    const formats::NiftiLayout layout = formats::decodeNiftiHeader(bytes, "input");
    requirePromises(layout);
    const std::size_t headerBytes = formats::niftiHeaderBytes(bytes);
    (void)formats::decodeExtensions(bytes.substr(headerBytes), layout.swapped);
  } catch (const formats::FileError&) {
  }
  return 0;
}
