// Arrays that begin where a vector register can be loaded at once.
#ifndef TAVMAP_INFERENCE_LANE_VECTOR_H
#define TAVMAP_INFERENCE_LANE_VECTOR_H

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

namespace inference {

template <typename T>
struct LaneAllocator {
  using value_type = T;
  static constexpr std::align_val_t kAlignment{64};

  LaneAllocator() = default;
  template <typename U>
  explicit LaneAllocator(const LaneAllocator<U>&) {}
  [[nodiscard]] T* allocate(std::size_t n) {
    return static_cast<T*>(::operator new(n * sizeof(T), kAlignment));
  }
  void deallocate(T* values, std::size_t) { ::operator delete(values, kAlignment); }
  friend bool operator==(const LaneAllocator&, const LaneAllocator&) { return true; }
};

using LaneFloats = std::vector<float, LaneAllocator<float>>;
using LaneInts = std::vector<std::int32_t, LaneAllocator<std::int32_t>>;

}  // namespace inference

#endif
