// Arrays as pages get them, in one reply:
//   4 bytes   length of the header, little endian
//   header    JSON, spaces at its end so that what follows begins at a multiple of 8 bytes
//   arrays    each from the offset (of the reply) that the header names, a multiple of 8 too
#ifndef TAVMAP_WORKBENCH_PACKED_ARRAYS_H
#define TAVMAP_WORKBENCH_PACKED_ARRAYS_H

#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace workbench {

struct PackedArray {
  nlohmann::ordered_json header;  // what it holds: "format" and what else a page needs; the offset is added
  std::string bytes;
};

// header: gets a member "arrays", which has an entry per array, in their order.
[[nodiscard]] std::string packed(nlohmann::ordered_json header, const std::vector<PackedArray>& arrays);

// As they lie in memory.
template <class Value>
[[nodiscard]] std::string bytesOf(const std::vector<Value>& values) {
  std::string bytes(values.size() * sizeof(Value), '\0');
  std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

}  // namespace workbench

#endif
