#include "workbench/packed_arrays.h"

#include <bit>
#include <cstdint>

namespace workbench {
namespace {

static_assert(std::endian::native == std::endian::little, "arrays are sent as they lie in memory");

constexpr std::size_t kAlignment = 8;

std::size_t aligned(std::size_t size) {
  return (size + kAlignment - 1) / kAlignment * kAlignment;
}

// Names come from users' files, in whatever code.
std::string headerJsonText(const nlohmann::ordered_json& header) {
  return header.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

// Offsets are counted from the start of the reply, whose header holds them: room for their digits is left
// first.
std::string headerText(nlohmann::ordered_json header, const std::vector<PackedArray>& arrays) {
  constexpr std::size_t kDigits = 12;
  header["arrays"] = nlohmann::ordered_json::array();
  for (const PackedArray& array : arrays) {
    nlohmann::ordered_json one = array.header;
    one["offset"] = 0;
    header["arrays"].push_back(one);
  }
  const std::size_t begin = aligned(4 + headerJsonText(header).size() + kDigits * arrays.size());
  std::size_t offset = begin;
  for (std::size_t i = 0; i < arrays.size(); ++i) {
    header["arrays"][i]["offset"] = offset;
    offset += aligned(arrays[i].bytes.size());
  }
  std::string text = headerJsonText(header);
  text.resize(begin - 4, ' ');
  return text;
}

}  // namespace

std::string packed(nlohmann::ordered_json header, const std::vector<PackedArray>& arrays) {
  const std::string text = headerText(std::move(header), arrays);
  const auto length = static_cast<std::uint32_t>(text.size());
  std::string bytes(sizeof(length), '\0');
  std::memcpy(bytes.data(), &length, sizeof(length));
  bytes += text;
  for (const PackedArray& array : arrays) {
    bytes += array.bytes;
    bytes.resize(aligned(bytes.size()), '\0');
  }
  return bytes;
}

}  // namespace workbench
