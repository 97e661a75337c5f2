#include "report/encoding.h"

#include <nettle/base64.h>
#include <zlib.h>

#include <new>

namespace report {

std::string base64(std::string_view bytes) {
  std::string textual(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
  base64_encode_raw(textual.data(), bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  return textual;
}

std::string gzipped(std::span<const std::uint8_t> bytes) {
  constexpr int kLevel = 6, kGzipWindowBits = 15 + 16, kMemoryLevel = 9;
  z_stream state{};
  if (deflateInit2(&state, kLevel, Z_DEFLATED, kGzipWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::bad_alloc();
  std::string out(deflateBound(&state, static_cast<uLong>(bytes.size())), '\0');
  state.next_in = const_cast<std::uint8_t*>(bytes.data());  // only read
  state.avail_in = static_cast<uInt>(bytes.size());
  state.next_out = reinterpret_cast<std::uint8_t*>(out.data());
  state.avail_out = static_cast<uInt>(out.size());
  deflate(&state, Z_FINISH);  // the bound leaves room for all of it
  out.resize(state.total_out);
  deflateEnd(&state);
  return out;
}

std::string pngUri(std::string_view png) {
  return "data:image/png;base64," + base64(png);
}

}  // namespace report
