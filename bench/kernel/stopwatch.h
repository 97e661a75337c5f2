// Timing on the wall clock.
#ifndef TAVMAP_BENCH_KERNEL_STOPWATCH_H
#define TAVMAP_BENCH_KERNEL_STOPWATCH_H

#include <algorithm>
#include <chrono>
#include <limits>

namespace bench {

class Stopwatch {
 public:
  [[nodiscard]] double seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point start_ = Clock::now();
};

// The best of several: what the work takes when nothing else disturbs it.
template <class Work>
double bestSeconds(int repetitions, Work work) {
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < repetitions; ++i) {
    const Stopwatch watch;
    work();
    best = std::min(best, watch.seconds());
  }
  return best;
}

}  // namespace bench

#endif
