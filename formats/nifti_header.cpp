#include "formats/nifti_header.h"

#include <fmt/core.h>
#include <nifti2_io.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "formats/data_types.h"
#include "formats/file_error.h"
#include "formats/nifti_affine.h"

namespace formats {
namespace {

static_assert(sizeof(nifti_1_header) == kNifti1Bytes && sizeof(nifti_2_header) == kNifti2Bytes);

constexpr std::uint64_t kMaxDataOffset = std::uint64_t{256} << 20U;
constexpr std::uint64_t kMaxDataBytes = std::uint64_t{1} << 46U;
constexpr const char* kCheckFile = "Check that the file is complete and was written by a NIfTI program";

[[noreturn]] void fail(const std::string& path, const std::string& reason, const char* remedy = kCheckFile) {
  throw FileError(path, reason, remedy);
}

template <std::size_t N>
std::string textOf(const char (&field)[N]) {
  return {field, std::find(field, field + N, '\0')};
}

// Names the types that exist in NIfTI and not here.
std::string unsupportedTypeText(int code) {
  switch (code) {
    case 32:
    case 1792:
    case 2048:
      return "it holds complex numbers";
    case 128:
    case 2304:
      return "it holds colours";
    case 1536:
      return "it holds 128-bit floating-point numbers";
    case 1:
      return "it holds single bits";
    default:
      return fmt::format("its data type code {} is unknown", code);
  }
}

template <typename Header>
void readDataType(const Header& raw, const std::string& path, ImageHeader& header) {
  header.dataType = static_cast<DataType>(raw.datatype);
  if (!withStoredType(header.dataType, [](auto) {})) {
    fail(path, unsupportedTypeText(raw.datatype), "Convert it to real numbers, for instance 32-bit floats");
  }
  if (raw.bitpix != static_cast<int>(8 * bytesOf(header.dataType))) {
    fail(path,
         fmt::format("its header gives {} bits for a value of type {}", raw.bitpix, nameOf(header.dataType)));
  }
}

template <typename Header>
int extentOf(const Header& raw, int dimension, const std::string& path) {
  if (dimension > raw.dim[0]) return 1;
  const auto extent = static_cast<std::int64_t>(raw.dim[dimension]);
  if (extent < 1 || extent > std::numeric_limits<std::int32_t>::max()) {
    fail(path, fmt::format("its header gives {} as extent of dimension {}", extent, dimension));
  }
  return static_cast<int>(extent);
}

template <typename Header>
void readExtents(const Header& raw, const std::string& path, ImageHeader& header) {
  if (raw.dim[0] < 1 || raw.dim[0] > 7) {
    fail(path, fmt::format("its header gives {} as number of dimensions", raw.dim[0]));
  }
  header.size = {extentOf(raw, 1, path), extentOf(raw, 2, path), extentOf(raw, 3, path)};
  header.volumes = extentOf(raw, 4, path);
  header.series = raw.dim[0] >= 4;
  for (int dimension = 5; dimension <= 7; ++dimension) {
    if (extentOf(raw, dimension, path) != 1) {
      fail(path, fmt::format("it has {} dimensions, only three and time are understood", raw.dim[0]),
           "Split it into images of three or four dimensions");
    }
  }
}

// Bytes of all values, each factor checked before it is multiplied.
std::uint64_t dataBytesOf(const ImageHeader& header, const std::string& path) {
  std::uint64_t bytes = bytesOf(header.dataType);
  for (const int extent : {header.size.x, header.size.y, header.size.z, header.volumes}) {
    bytes *= static_cast<std::uint64_t>(extent);
    if (bytes > kMaxDataBytes) fail(path, "its header describes more data than any file holds");
  }
  if (header.size.voxels() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    fail(path, "its volumes have more than 2^31 - 1 voxels");
  }
  return bytes;
}

template <typename Header>
void readScaling(const Header& raw, ImageHeader& header) {
  const auto slope = static_cast<double>(raw.scl_slope), intercept = static_cast<double>(raw.scl_inter);
  if (slope == 0 || !std::isfinite(slope)) return;  // the standard's way to say "none"
  header.slope = slope;
  header.intercept = std::isfinite(intercept) ? intercept : 0;
}

double millisecondsPerUnit(int units) {
  switch (XYZT_TO_TIME(units)) {
    case NIFTI_UNITS_UNKNOWN:  // what everybody means then
    case NIFTI_UNITS_SEC:
      return 1000;
    case NIFTI_UNITS_MSEC:
      return 1;
    case NIFTI_UNITS_USEC:
      return 0.001;
    default:
      return 0;  // frequencies: no repetition time
  }
}

template <typename Header>
void readTime(const Header& raw, ImageHeader& header) {
  const double trMs = static_cast<double>(raw.pixdim[4]) * millisecondsPerUnit(raw.xyzt_units);
  // Whole microseconds, about what a float header holds: 2.2 s must not become 2200.0000477 ms.
  if (header.series && std::isfinite(trMs) && trMs > 0) header.trMs = std::round(trMs * 1e3) / 1e3;
}

template <typename Header>
NiftiTransforms readTransforms(const Header& raw) {
  NiftiTransforms t;
  t.sformCode = raw.sform_code;
  t.qformCode = raw.qform_code;
  std::copy_n(raw.srow_x, 4, t.sform.begin());
  std::copy_n(raw.srow_y, 4, t.sform.begin() + 4);
  std::copy_n(raw.srow_z, 4, t.sform.begin() + 8);
  const decltype(raw.quatern_b) quaternion[] = {raw.quatern_b, raw.quatern_c, raw.quatern_d,
                                                raw.qoffset_x, raw.qoffset_y, raw.qoffset_z};
  std::copy_n(quaternion, 6, t.quaternion.begin());
  std::copy_n(raw.pixdim, 4, t.pixdim.begin());
  return t;
}

template <typename Header>
std::uint64_t readDataOffset(const Header& raw, const std::string& path) {
  const std::uint64_t least = sizeof(Header) + 4;  // the four extender bytes
  const auto offset = static_cast<double>(raw.vox_offset);
  if (offset == 0) return least;
  if (!(offset >= static_cast<double>(least) && offset <= static_cast<double>(kMaxDataOffset))) {
    fail(path, "its header gives an impossible position of the data");
  }
  return static_cast<std::uint64_t>(offset);
}

template <typename Header>
void requireSingleFileMagic(const Header& raw, const std::string& path) {
  const std::string magic = textOf(raw.magic);
  if (magic == "ni1" || magic == "ni2") {
    fail(path, "it is the header of a pair of files (.hdr and .img)", "Convert the pair to one .nii file");
  }
  if (magic != (sizeof(Header) == kNifti1Bytes ? "n+1" : "n+2")) {
    fail(path, "it is no NIfTI file (its magic text is missing)", "Convert it to NIfTI");
  }
}

template <typename Header>
NiftiLayout decode(const std::string& bytes, bool swapped, const std::string& path) {
  Header raw;
  std::memcpy(&raw, bytes.data(), sizeof raw);
  const int version = sizeof raw == kNifti1Bytes ? 1 : 2;
  requireSingleFileMagic(raw, path);
  if (swapped) swap_nifti_header(&raw, version);
  NiftiLayout layout;
  layout.version = version;
  layout.swapped = swapped;
  readExtents(raw, path, layout.header);
  readDataType(raw, path, layout.header);
  layout.dataBytes = dataBytesOf(layout.header, path);
  layout.dataOffset = readDataOffset(raw, path);
  readScaling(raw, layout.header);
  readTime(raw, layout.header);
  if (!chooseAffine(readTransforms(raw), layout.header)) {
    fail(path, "the transform from voxels to millimetres in its header has no inverse", "Repair the header");
  }
  layout.header.intentCode = raw.intent_code;
  layout.header.intentName = textOf(raw.intent_name);
  layout.header.description = textOf(raw.descrip);
  return layout;
}

std::uint32_t firstNumber(const std::string& bytes) {
  std::uint32_t number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

}  // namespace

std::size_t niftiHeaderBytes(const std::string& firstFourBytes) {
  if (firstFourBytes.size() < 4) return 0;
  const std::uint32_t number = firstNumber(firstFourBytes);
  for (const std::size_t size : {kNifti1Bytes, kNifti2Bytes}) {
    if (number == size || number == swapBytes(static_cast<std::uint32_t>(size))) return size;
  }
  return 0;
}

NiftiLayout decodeNiftiHeader(const std::string& bytes, const std::string& path) {
  const std::size_t size = niftiHeaderBytes(bytes);
  if (size == 0) fail(path, "it is no NIfTI file", "Convert it to NIfTI");
  if (bytes.size() < size) fail(path, "the file ends within its header");
  const bool swapped = firstNumber(bytes) != size;
  return size == kNifti1Bytes ? decode<nifti_1_header>(bytes, swapped, path)
                              : decode<nifti_2_header>(bytes, swapped, path);
}

std::vector<HeaderExtension> decodeExtensions(const std::string& bytes, bool swapped) {
  std::vector<HeaderExtension> extensions;
  if (bytes.size() < 4 || bytes[0] == 0) return extensions;
  std::size_t at = 4;
  while (bytes.size() - at >= 16) {
    std::int32_t numbers[2];
    std::memcpy(numbers, bytes.data() + at, sizeof numbers);
    if (swapped) numbers[0] = swapBytes(numbers[0]), numbers[1] = swapBytes(numbers[1]);
    if (numbers[0] < 16 || static_cast<std::size_t>(numbers[0]) > bytes.size() - at) break;
    const auto size = static_cast<std::size_t>(numbers[0]);
    extensions.push_back({numbers[1], bytes.substr(at + 8, size - 8)});
    at += size;
  }
  return extensions;
}

}  // namespace formats
