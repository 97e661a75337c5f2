// From NIfTI data type codes to C++ types, and from stored to scaled values.
#ifndef TAVMAP_FORMATS_DATA_TYPES_H
#define TAVMAP_FORMATS_DATA_TYPES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "formats/image.h"

namespace formats {

template <typename T>
struct TypeName;
template <>
struct TypeName<std::uint8_t> {
  static constexpr const char* kText = "uint8";
};
template <>
struct TypeName<std::int8_t> {
  static constexpr const char* kText = "int8";
};
template <>
struct TypeName<std::uint16_t> {
  static constexpr const char* kText = "uint16";
};
template <>
struct TypeName<std::int16_t> {
  static constexpr const char* kText = "int16";
};
template <>
struct TypeName<std::uint32_t> {
  static constexpr const char* kText = "uint32";
};
template <>
struct TypeName<std::int32_t> {
  static constexpr const char* kText = "int32";
};
template <>
struct TypeName<std::uint64_t> {
  static constexpr const char* kText = "uint64";
};
template <>
struct TypeName<std::int64_t> {
  static constexpr const char* kText = "int64";
};
template <>
struct TypeName<float> {
  static constexpr const char* kText = "float32";
};
template <>
struct TypeName<double> {
  static constexpr const char* kText = "float64";
};

// Calls `action` with a value of the C++ type that `type` stands for: one decision per block of
// values, none per value. False for a code that is no DataType; `action` is then not called.
template <typename Action>
bool withStoredType(DataType type, Action&& action) {
  switch (type) {
    case DataType::kUint8:
      action(std::uint8_t{});
      return true;
    case DataType::kInt8:
      action(std::int8_t{});
      return true;
    case DataType::kUint16:
      action(std::uint16_t{});
      return true;
    case DataType::kInt16:
      action(std::int16_t{});
      return true;
    case DataType::kUint32:
      action(std::uint32_t{});
      return true;
    case DataType::kInt32:
      action(std::int32_t{});
      return true;
    case DataType::kUint64:
      action(std::uint64_t{});
      return true;
    case DataType::kInt64:
      action(std::int64_t{});
      return true;
    case DataType::kFloat32:
      action(float{});
      return true;
    case DataType::kFloat64:
      action(double{});
      return true;
  }
  return false;
}

// One stored value with its bytes in the other order.
template <typename T>
[[nodiscard]] inline T swapBytes(T value) {
  if constexpr (sizeof(T) == 1) {
    return value;
  } else {
    using Bits = std::conditional_t<sizeof(T) == 2, std::uint16_t,
                                    std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>;
    Bits bits;
    std::memcpy(&bits, &value, sizeof bits);
    if constexpr (sizeof(T) == 2) bits = __builtin_bswap16(bits);
    if constexpr (sizeof(T) == 4) bits = __builtin_bswap32(bits);
    if constexpr (sizeof(T) == 8) bits = __builtin_bswap64(bits);
    std::memcpy(&value, &bits, sizeof bits);
    return value;
  }
}

// value = slope * stored + intercept, computed in double and rounded once; plain conversion where
// the header has no scaling, so that whole numbers stay exact.
struct Scaling {
  double slope = 1, intercept = 0;
  [[nodiscard]] bool isIdentity() const { return slope == 1 && intercept == 0; }
};

template <typename Stored, typename Out>
void scaleValues(const Stored* stored, std::size_t count, const Scaling& scaling, Out* out) {
  if (scaling.isIdentity()) {
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<Out>(stored[i]);
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = static_cast<Out>(scaling.slope * static_cast<double>(stored[i]) + scaling.intercept);
    }
  }
}

}  // namespace formats

#endif
