// Parts of a computation on threads of their own, and how a computation is called off.
#ifndef TAVMAP_TAV_AT_ONCE_H
#define TAVMAP_TAV_AT_ONCE_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <future>
#include <vector>

namespace tav {

// Calls use(0), use(1), ... use(count - 1), each on a thread of its own but the first. Throws what one of
// them threw, when all have ended.
template <class Use>
void atOnce(std::size_t count, Use use) {
  std::vector<std::future<void>> others;
  for (std::size_t i = 1; i < count; ++i) others.push_back(std::async(std::launch::async, use, i));
  use(std::size_t{0});
  for (std::future<void>& other : others) other.get();
}

// Calls use(item) for each item below `count`, the next one on whichever of so many threads is free.
template <class Use>
void shareOut(std::size_t count, int threads, const Use& use) {
  std::atomic<std::size_t> next = 0;
  atOnce(std::min(count, static_cast<std::size_t>(std::max(threads, 1))), [&](std::size_t) {
    for (std::size_t item = next++; item < count; item = next++) use(item);
  });
}

// Ends a run whose RunOptions::cancel was set.
class Cancelled : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "the computation was called off"; }
};

// Throws Cancelled when the flag, if there is one, is set.
inline void stopIf(const std::atomic<bool>* cancel) {
  if (cancel != nullptr && cancel->load(std::memory_order_relaxed)) throw Cancelled();
}

}  // namespace tav

#endif
