// Decoding and encoding of NIfTI headers as bytes.
#ifndef TAVMAP_FORMATS_NIFTI_HEADER_H
#define TAVMAP_FORMATS_NIFTI_HEADER_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "formats/image.h"

namespace formats {

inline constexpr std::size_t kNifti1Bytes = 348, kNifti2Bytes = 540;

// What decoding finds beside the image model.
struct NiftiLayout {
  ImageHeader header;
  int version = 1;       // 1 or 2
  bool swapped = false;  // stored in the other byte order than this machine's
  std::uint64_t dataOffset = 0;
  std::uint64_t dataBytes = 0;
};

// Bytes of the header that begins with these four bytes: 348 or 540, and 0 for what is no NIfTI.
[[nodiscard]] std::size_t niftiHeaderBytes(const std::string& firstFourBytes);

// `bytes`: the whole header of niftiHeaderBytes(...) bytes. Every field that anything is computed
// from is checked; FileError says what is wrong. The extensions are left empty.
[[nodiscard]] NiftiLayout decodeNiftiHeader(const std::string& bytes, const std::string& path);

// `bytes`: what stands between header and data. Reads as far as it is well-formed: viewers write
// all kinds of things here, and the data are found without it.
[[nodiscard]] std::vector<HeaderExtension> decodeExtensions(const std::string& bytes, bool swapped);

// A NIfTI-1 header in this machine's byte order with its extensions, up to the first data value.
// Precondition: every extent fits 16 bits.
[[nodiscard]] std::string encodeNifti1Header(const ImageHeader& header);

}  // namespace formats

#endif
