// Places of positive values in descending order of these.
#ifndef TAVMAP_INFERENCE_DESCENDING_ORDER_H
#define TAVMAP_INFERENCE_DESCENDING_ORDER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace inference {

// Sorts by the bits of floats, which are in the order of their values: no comparisons. Keeps its memory.
class DescendingOrder {
 public:
  struct Entry {
    std::uint32_t key;  // smaller for larger values
    std::int32_t place;
  };

  // Of `sign` (1 or -1) times the values those above 0; equal ones by ascending place. Valid until the next
  // call.
  [[nodiscard]] std::span<const Entry> of(std::span<const float> values, int sign);

 private:
  void collect(std::span<const float> values, int sign);
  void pass(int shift);

  std::vector<Entry> entries_, sorted_;
  std::size_t count_ = 0;
};

// The value of an entry.
[[nodiscard]] float valueOf(const DescendingOrder::Entry& entry);

}  // namespace inference

#endif
