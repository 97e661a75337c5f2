// Wall and processor time of one action, and the best of several.
#ifndef TAVMAP_BENCH_FORMATS_TIMING_H
#define TAVMAP_BENCH_FORMATS_TIMING_H

#include <algorithm>
#include <chrono>
#include <ctime>
#include <limits>

namespace bench {

struct Seconds {
  double wall = std::numeric_limits<double>::infinity(),
         cpu = wall;  // cpu: of the process and the system for it
};

[[nodiscard]] inline Seconds now() {
  timespec cpu{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu);
  return {std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(),
          static_cast<double>(cpu.tv_sec) + 1e-9 * static_cast<double>(cpu.tv_nsec)};
}

// Runs `action`, gives what it took, and keeps the least in `best`.
template <typename Action>
Seconds timed(Action&& action, Seconds& best) {
  const Seconds start = now();
  action();
  const Seconds end = now();
  const Seconds taken{end.wall - start.wall, end.cpu - start.cpu};
  best = {std::min(best.wall, taken.wall), std::min(best.cpu, taken.cpu)};
  return taken;
}

}  // namespace bench

#endif
