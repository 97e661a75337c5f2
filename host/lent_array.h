// Memory that the host lends to a plug-in, with a guard of known bytes on either side, so that a
// plug-in that writes beyond the ends is found out.
#ifndef TAVMAP_HOST_LENT_ARRAY_H
#define TAVMAP_HOST_LENT_ARRAY_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace host {

template <typename Type>
class LentArray {
  static_assert(std::is_trivially_copyable_v<Type>);

 public:
  using value_type = Type;
  using const_iterator = const Type*;

  // `size` elements of value zero.
  LentArray() : LentArray(0) {}
  explicit LentArray(std::size_t size) : size_(size), storage_(size + 2 * kGuard) {
    std::memset(storage_.data(), kPattern, kGuard * sizeof(Type));
    std::memset(data() + size, kPattern, kGuard * sizeof(Type));
  }

  // Stable for the life of the array, also when it is moved.
  Type* data() { return storage_.data() + kGuard; }
  const Type* data() const { return storage_.data() + kGuard; }
  [[nodiscard]] std::size_t size() const { return size_; }
  Type* begin() { return data(); }
  Type* end() { return data() + size_; }
  const Type* begin() const { return data(); }
  const Type* end() const { return data() + size_; }

  // False once something was written outside the elements.
  [[nodiscard]] bool intact() const { return isGuard(storage_.data()) && isGuard(data() + size_); }

 private:
  static constexpr std::size_t kGuard = 32 / sizeof(Type);
  static constexpr unsigned char kPattern = 0xA5;

  static bool isGuard(const Type* elements) {
    unsigned char pattern[kGuard * sizeof(Type)];
    std::memset(pattern, kPattern, sizeof pattern);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bytes are compared, not numbers
    return std::memcmp(elements, pattern, sizeof pattern) == 0;
  }

  std::size_t size_;
  std::vector<Type> storage_;
};

}  // namespace host

#endif
