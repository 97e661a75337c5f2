// What a voxel loop takes at least: reading the data and the multiply-adds that cannot be avoided.
// Both happen on the same core, so they add.
#ifndef TAVMAP_BENCH_KERNEL_LIMIT_H
#define TAVMAP_BENCH_KERNEL_LIMIT_H

#include <string>

#include "bench/kernel/workloads.h"

namespace bench {

// Multiply-adds per second in single precision with vectors of 256 and 512 bits; 0 where the CPU
// has none.
struct Peak {
  double with256 = 0.0;
  double with512 = 0.0;
  [[nodiscard]] double best() const { return with256 > with512 ? with256 : with512; }
};
[[nodiscard]] Peak measurePeak();

// Seconds to fread the data slice by slice from the page cache, best of several.
[[nodiscard]] double readSeconds(const std::string& file, const Workload& workload);

// Of all included voxels with `draws` surrogates each. Per time point 4 for the trend, p + 1 own
// lag sums, 2p + 1 cross lag sums with the reference and as many with each surrogate; then the
// fits. Everything that depends on references and surrogates alone counts nothing.
[[nodiscard]] double multiplyAdds(const Workload& workload, int draws = 1);

}  // namespace bench

#endif
