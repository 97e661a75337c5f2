#include "formats/vtc_writer.h"

#include <fmt/core.h>

#include <cstdint>
#include <cstring>
#include <limits>

#include "formats/file_error.h"
#include "io/cnvtcfile.h"

namespace formats {
namespace {

constexpr std::int16_t kVersion = 3;
constexpr std::int32_t kSixteenBitData = 1;
constexpr std::int32_t kNativeSpace = 1;  // neither ACPC nor Talairach

void putInt16(std::string& bytes, std::int32_t value) {
  const auto bits = static_cast<std::uint32_t>(value);
  bytes += static_cast<char>(bits & 0xFFU);
  bytes += static_cast<char>((bits >> 8U) & 0xFFU);
}

void putFloat(std::string& bytes, float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  putInt16(bytes, static_cast<std::int32_t>(bits & 0xFFFFU));
  putInt16(bytes, static_cast<std::int32_t>(bits >> 16U));
}

std::string encodeHeader(const VTC_Header& header, float trMs) {
  std::string bytes;
  putInt16(bytes, kVersion);
  bytes.append(header.sourceFileName).push_back('\0');
  putInt16(bytes, 0);     // no linked protocol,
  bytes.push_back('\0');  // hence an empty name,
  putInt16(bytes, 0);     // and none is current
  putInt16(bytes, header.dataType);
  putInt16(bytes, header.nrOfVolumes);
  putInt16(bytes, header.resolution);
  for (const std::int32_t bound :
       {header.xStart, header.xEnd, header.yStart, header.yEnd, header.zStart, header.zEnd}) {
    putInt16(bytes, bound);
  }
  bytes += '\0';
  bytes += static_cast<char>(header.spaceCode & 0xFF);
  putFloat(bytes, trMs);
  return bytes;
}

bool fitsInt16(std::int32_t value) {
  return value >= 0 && value <= std::numeric_limits<std::int16_t>::max();
}

}  // namespace

VTC_Header nativeVtcHeader(const std::string& path, const GridSize& size, int volumes, VtcType type) {
  VTC_Header header{};
  header.nrOfVolumes = volumes;
  header.xEnd = size.x;
  header.yEnd = size.y;
  header.zEnd = size.z;
  header.resolution = 1;
  header.dataType = type == VtcType::kFloat32 ? kVtcFloatData : kSixteenBitData;
  header.spaceCode = kNativeSpace;
  const bool fits = fitsInt16(volumes) && fitsInt16(size.x) && fitsInt16(size.y) && fitsInt16(size.z);
  if (!fits || !hasUsableGeometry(header)) {
    throw FileError(path, fmt::format("a VTC cannot hold {} voxels x {} volumes", toText(size), volumes),
                    "Crop the image or split the run");
  }
  return header;
}

VtcWriter::VtcWriter(const std::string& path, const VTC_Header& header, float trMs, Durability durability)
    : file_(path, durability) {
  const std::string bytes = encodeHeader(header, trMs);
  file_.write(bytes);
  headerBytes_ = bytes.size();
}

}  // namespace formats
