// A reply of packed arrays, read as a page reads it.
#ifndef TAVMAP_TESTS_WORKBENCH_PACKED_REPLY_H
#define TAVMAP_TESTS_WORKBENCH_PACKED_REPLY_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

struct PackedReply {
  nlohmann::json header;
  std::string bytes;

  explicit PackedReply(std::string reply) : bytes(std::move(reply)) {
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data(), 4);
    EXPECT_EQ((4 + length) % 8, 0U);
    header = nlohmann::json::parse(bytes.substr(4, length));
  }
  // The first array whose member has this value.
  template <class Value>
  [[nodiscard]] std::vector<Value> array(const char* member, const char* value) const {
    for (const nlohmann::json& one : header["arrays"]) {
      if (one[member] != value) continue;
      const std::size_t offset = one["offset"];
      EXPECT_EQ(offset % 8, 0U);
      std::vector<Value> values(header["voxels"].get<std::size_t>());
      EXPECT_LE(offset + values.size() * sizeof(Value), bytes.size());
      std::memcpy(values.data(), bytes.data() + offset, values.size() * sizeof(Value));
      return values;
    }
    ADD_FAILURE() << "no array whose " << member << " is " << value;
    return {};
  }
};

#endif
