#include "tests/formats/nifti_bytes.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace formats_test {
namespace {

class Writer {
 public:
  explicit Writer(bool bigEndian) : bigEndian_(bigEndian) {}

  template <typename T>
  void put(T value) {
    char raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    if (bigEndian_) std::reverse(raw, raw + sizeof(T));
    bytes_.append(raw, sizeof(T));
  }
  void text(const std::string& text, std::size_t width) {
    bytes_ += text.substr(0, width);
    bytes_.append(width - std::min(width, text.size()), '\0');
  }
  void zeros(std::size_t count) { bytes_.append(count, '\0'); }
  void floats(const std::vector<double>& values) {
    for (const double value : values) put(static_cast<float>(value));
  }
  void doubles(const std::vector<double>& values) {
    for (const double value : values) put(value);
  }
  std::string take() { return std::move(bytes_); }

 private:
  bool bigEndian_;
  std::string bytes_;
};

std::string version1(const NiftiSpec& s, double offset) {
  Writer w(s.bigEndian);
  w.put(std::int32_t{348});
  w.zeros(36);
  for (const auto d : s.dim) w.put(static_cast<std::int16_t>(d));
  w.zeros(12);
  w.put(static_cast<std::int16_t>(s.intentCode));
  w.put(static_cast<std::int16_t>(s.dataType));
  w.put(static_cast<std::int16_t>(s.bitsPerValue));
  w.zeros(2);
  w.floats(s.pixdim);
  w.floats({offset, s.slope, s.intercept});
  w.zeros(3);
  w.put(static_cast<char>(s.unitCode));
  w.zeros(24);
  w.text("described", 80);
  w.zeros(24);
  w.put(static_cast<std::int16_t>(s.qformCode));
  w.put(static_cast<std::int16_t>(s.sformCode));
  w.floats(s.quaternion);
  w.floats(s.sform);
  w.text("intended", 16);
  w.text(s.magic.empty() ? "n+1" : s.magic, 4);
  return w.take();
}

std::string version2(const NiftiSpec& s, double offset) {
  Writer w(s.bigEndian);
  w.put(std::int32_t{540});
  w.text(s.magic.empty() ? std::string("n+2\0\r\n\032\n", 8) : s.magic, 8);
  w.put(static_cast<std::int16_t>(s.dataType));
  w.put(static_cast<std::int16_t>(s.bitsPerValue));
  for (const auto d : s.dim) w.put(d);
  w.zeros(24);
  w.doubles(s.pixdim);
  w.put(static_cast<std::int64_t>(offset));
  w.doubles({s.slope, s.intercept});
  w.zeros(48);
  w.text("described", 80);
  w.zeros(24);
  w.put(static_cast<std::int32_t>(s.qformCode));
  w.put(static_cast<std::int32_t>(s.sformCode));
  w.doubles(s.quaternion);
  w.doubles(s.sform);
  w.zeros(4);
  w.put(static_cast<std::int32_t>(s.unitCode));
  w.put(static_cast<std::int32_t>(s.intentCode));
  w.text("intended", 16);
  w.zeros(16);
  return w.take();
}

}  // namespace

std::string niftiHeader(const NiftiSpec& spec) {
  const std::size_t size = spec.version == 1 ? 348 : 540;
  std::string between(4, '\0');
  if (!spec.extensions.empty()) between[0] = 1;
  between += spec.extensions;
  const double offset = spec.dataOffset >= 0 ? spec.dataOffset : static_cast<double>(size + between.size());
  const std::string header = spec.version == 1 ? version1(spec, offset) : version2(spec, offset);
  if (header.size() != size) throw std::logic_error("the test's header has a wrong size");
  return header + between;
}

std::string niftiData(const NiftiSpec& spec, const std::vector<double>& stored) {
  Writer w(spec.bigEndian);
  for (const double v : stored) {
    switch (spec.dataType) {
      case 2:
        w.put(static_cast<std::uint8_t>(v));
        break;
      case 4:
        w.put(static_cast<std::int16_t>(v));
        break;
      case 8:
        w.put(static_cast<std::int32_t>(v));
        break;
      case 16:
        w.put(static_cast<float>(v));
        break;
      case 64:
        w.put(v);
        break;
      case 256:
        w.put(static_cast<std::int8_t>(v));
        break;
      case 512:
        w.put(static_cast<std::uint16_t>(v));
        break;
      case 768:
        w.put(static_cast<std::uint32_t>(v));
        break;
      case 1024:
        w.put(static_cast<std::int64_t>(v));
        break;
      case 1280:
        w.put(static_cast<std::uint64_t>(v));
        break;
      default:
        throw std::logic_error("no such type in the test");
    }
  }
  return w.take();
}

std::string gzipped(const std::string& bytes) {
  z_stream stream{};
  if (deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) throw std::bad_alloc();
  std::string out(deflateBound(&stream, bytes.size()) + 64, '\0');
  std::string in = bytes;
  stream.next_in = reinterpret_cast<Bytef*>(in.data());
  stream.avail_in = static_cast<uInt>(in.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

}  // namespace formats_test
