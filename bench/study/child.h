// Runs a program and says what it and the workers that it waited for took.
#ifndef TAVMAP_BENCH_STUDY_CHILD_H
#define TAVMAP_BENCH_STUDY_CHILD_H

#include <string>
#include <vector>

namespace bench {

struct Cost {
  double cpuSeconds = 0;  // user and system, of all processes together
  double wallSeconds = 0;
  double peakMegabytes = 0;  // of the largest process
};

// `arguments` begin with the program's path. Its output goes to /dev/null. Throws std::runtime_error
// when it cannot be started or fails.
Cost runChild(const std::vector<std::string>& arguments);

}  // namespace bench

#endif
