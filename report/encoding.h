// Bytes inside a page: compressed, and as text.
#ifndef TAVMAP_REPORT_ENCODING_H
#define TAVMAP_REPORT_ENCODING_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace report {

[[nodiscard]] std::string base64(std::string_view bytes);
// One gzip member without name and time. Throws std::bad_alloc.
[[nodiscard]] std::string gzipped(std::span<const std::uint8_t> bytes);
[[nodiscard]] std::string pngUri(std::string_view png);  // "data:image/png;base64,..."

}  // namespace report

#endif
