// One thread's share of the shuffles.
#ifndef TAVMAP_INFERENCE_SHUFFLE_WORKER_H
#define TAVMAP_INFERENCE_SHUFFLE_WORKER_H

#include <cstddef>
#include <vector>

#include "inference/correlations.h"
#include "inference/lane_vector.h"
#include "inference/sweep.h"

namespace inference {

class ShuffleWorker {
 public:
  explicit ShuffleWorker(const SweepSetting& setting);

  // Shuffles that are best taken at a time.
  [[nodiscard]] static std::size_t batch() { return 32; }
  // Shuffles first ... first + count - 1, first being at least 1: writes their maxima into `swept`, at their
  // indices less 1, and counts what they reach here.
  void run(std::size_t first, std::size_t count, Swept& swept);

  [[nodiscard]] const LaneInts& reached() const { return reached_; }

 private:
  void tally(const LaneSpan& span, std::size_t freedomClass, Correlations& correlations, std::size_t count);
  [[nodiscard]] float largestZ(std::size_t shuffle) const;

  const SweepSetting& setting_;
  std::vector<int> freedoms_;               // that differ
  std::vector<std::size_t> freedomOfSpan_;  // index into them
  LaneFloats piece_, largest_;              // [shuffle][freedom][lane]
  LaneInts reached_;
};

}  // namespace inference

#endif
