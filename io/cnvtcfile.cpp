#include "io/cnvtcfile.h"

#include <bit>
#include <cstring>
#include <initializer_list>
#include <limits>

static_assert(std::endian::native == std::endian::little, "VTC numbers are read as they lie in memory");

namespace {

// Reads fields one after the other. After a failed read every further one does nothing, so the
// caller asks once at the end.
class FieldReader {
 public:
  explicit FieldReader(std::FILE* file) : file_(file) {}

  template <typename T>
  T number() {
    T value{};
    ok_ = ok_ && std::fread(&value, sizeof value, 1, file_) == 1;
    return ok_ ? value : T{};
  }

  // A zero-terminated text; what does not fit is read and dropped.
  void text(char (&out)[kVtcNameBytes]) {
    int length = 0;
    std::memset(out, 0, sizeof out);
    while (ok_) {
      const int byte = std::fgetc(file_);
      ok_ = byte != EOF;
      if (!ok_ || byte == 0) return;
      if (length < kVtcNameBytes - 1) out[length++] = static_cast<char>(byte);
    }
  }

  void skip(int bytes) {
    for (int i = 0; i < bytes && ok_; ++i) ok_ = std::fgetc(file_) != EOF;
  }

  [[nodiscard]] bool ok() const { return ok_; }

 private:
  std::FILE* file_;
  bool ok_ = true;
};

// The integer part of milliseconds + 0.5, kept inside 32 bits (a conversion beyond is undefined).
std::int32_t roundedTr(float milliseconds) {
  const double rounded = static_cast<double>(milliseconds) + 0.5;
  if (!(rounded > -2147483649.0 && rounded < 2147483648.0)) return 0;
  return static_cast<std::int32_t>(rounded);
}

void readGeometry(FieldReader& fields, VTC_Header& header) {
  header.nrOfVolumes = fields.number<std::int16_t>();
  header.resolution = fields.number<std::int16_t>();
  for (std::int32_t* bound :
       {&header.xStart, &header.xEnd, &header.yStart, &header.yEnd, &header.zStart, &header.zEnd}) {
    *bound = fields.number<std::int16_t>();
  }
}

bool readFields(FieldReader& fields, VTC_Header& header) {
  const int version = fields.number<std::int16_t>();
  if (version < 2) return false;
  const bool hasTypes = version > 2;
  fields.text(header.sourceFileName);
  if (hasTypes) {
    header.nrOfLinkedProtocols = fields.number<std::int16_t>();
    if (header.nrOfLinkedProtocols > 1) return false;
  }
  fields.text(header.protocolName);
  if (hasTypes) {
    fields.skip(2);  // index of the current protocol
    header.dataType = fields.number<std::int16_t>();
  }
  readGeometry(fields, header);
  if (hasTypes) {
    header.spaceCode = fields.number<std::uint8_t>();
    header.spaceCode = fields.number<std::uint8_t>();  // the second code is the one that stays
  } else {
    fields.skip(2);
  }
  header.tr = roundedTr(fields.number<float>());
  if (!hasTypes) fields.skip(4 + 4 + 2 + 2);
  return fields.ok();
}

bool fits31Bits(std::int64_t a, std::int64_t b, std::int64_t c) {
  return a * b <= std::numeric_limits<std::int32_t>::max() / c;
}

}  // namespace

bool readVTCHeader(std::FILE* file, VTC_Header& header) {
  header.dataType = kVtcShortData;  // version 2 has no such field and holds 16-bit data
  FieldReader fields(file);
  if (!readFields(fields, header)) return false;
  header.dataOffset = static_cast<std::int32_t>(std::ftell(file));
  header.unused1 = 0;
  return true;
}

bool hasUsableGeometry(const VTC_Header& header) {
  if (header.resolution < 1 || header.nrOfVolumes < 1) return false;
  const io::GridSize grid = gridOf(header);
  return grid.x > 0 && grid.y > 0 && grid.z > 0 && fits31Bits(grid.x, grid.y, grid.z) &&
         fits31Bits(grid.x, grid.y, header.nrOfVolumes);
}

io::GridSize gridOf(const VTC_Header& header) {
  return {(header.xEnd - header.xStart) / header.resolution,
          (header.yEnd - header.yStart) / header.resolution,
          (header.zEnd - header.zStart) / header.resolution};
}

std::int32_t sliceValues(const VTC_Header& header) {
  const io::GridSize grid = gridOf(header);
  return grid.x * grid.y * header.nrOfVolumes;
}
