// Timing. The clock is the thread's CPU time: everything that is timed here runs on one thread and
// waits for nothing, and other programs on the machine then disturb a measurement only through
// caches and clock rates.
#ifndef TAVMAP_BENCH_KERNEL_STOPWATCH_H
#define TAVMAP_BENCH_KERNEL_STOPWATCH_H

#include <time.h>

#include <algorithm>
#include <limits>

namespace bench {

class Stopwatch {
 public:
  [[nodiscard]] double seconds() const { return now() - start_; }

 private:
  static double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  }
  double start_ = now();
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
