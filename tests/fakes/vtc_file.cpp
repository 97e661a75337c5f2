#include "tests/fakes/vtc_file.h"

#include <cstring>
#include <fstream>

namespace fakes {
namespace {

template <typename T>
void put(std::string& bytes, T value) {
  char raw[sizeof(T)];
  std::memcpy(raw, &value, sizeof(T));
  bytes.append(raw, sizeof(T));
}

void putText(std::string& bytes, const std::string& text) {
  bytes.append(text.c_str(), text.size() + 1);
}

}  // namespace

VtcSpec cellGrid(int x, int y, int z, int nrOfVolumes) {
  VtcSpec spec;
  spec.resolution = 1;
  spec.xStart = spec.yStart = spec.zStart = 0;
  spec.xEnd = static_cast<std::int16_t>(x);
  spec.yEnd = static_cast<std::int16_t>(y);
  spec.zEnd = static_cast<std::int16_t>(z);
  spec.nrOfVolumes = static_cast<std::int16_t>(nrOfVolumes);
  return spec;
}

std::string vtcHeaderBytes(const VtcSpec& spec) {
  std::string bytes;
  put(bytes, spec.version);
  putText(bytes, spec.sourceName);
  if (spec.version > 2) put(bytes, spec.nrOfLinkedProtocols);
  putText(bytes, spec.protocolName);
  if (spec.version > 2) {
    put(bytes, std::int16_t{0});  // index of the current protocol
    put(bytes, spec.dataType);
  }
  put(bytes, spec.nrOfVolumes);
  put(bytes, spec.resolution);
  for (const std::int16_t bound : {spec.xStart, spec.xEnd, spec.yStart, spec.yEnd, spec.zStart, spec.zEnd}) {
    put(bytes, bound);
  }
  if (spec.version > 2) {
    put(bytes, spec.code1);
    put(bytes, spec.code2);
  } else {
    put(bytes, std::int16_t{0});
  }
  put(bytes, spec.tr);
  if (spec.version == 2) bytes.append(4 + 4 + 2 + 2, '\0');
  return bytes;
}

void writeVtc(const std::string& path, const VtcSpec& spec, const std::vector<float>& values) {
  std::string bytes = vtcHeaderBytes(spec);
  bytes.reserve(bytes.size() + 4 * values.size());
  const bool floats = spec.version > 2 && spec.dataType == 2;
  for (const float value : values) {
    if (floats) {
      put(bytes, value);
    } else {
      put(bytes, static_cast<std::uint16_t>(static_cast<std::int64_t>(value)));
    }
  }
  writeBytes(path, bytes);
}

void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace fakes
