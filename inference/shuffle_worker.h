// One thread's share of the shuffles.
#ifndef TAVMAP_INFERENCE_SHUFFLE_WORKER_H
#define TAVMAP_INFERENCE_SHUFFLE_WORKER_H

#include <cstddef>
#include <optional>
#include <vector>

#include "inference/cluster_finder.h"
#include "inference/correlations.h"
#include "inference/enhancer.h"
#include "inference/lane_vector.h"
#include "inference/pseudo_t.h"
#include "inference/split_cache.h"
#include "inference/sweep.h"
#include "inference/z_table.h"

namespace inference {

// Where the largest value alone is asked for, places are taken piece by piece for many shuffles; else whole
// maps of few shuffles are made.
class ShuffleWorker {
 public:
  explicit ShuffleWorker(const SweepSetting& setting);

  // Shuffles that are taken at a time.
  [[nodiscard]] static std::size_t batch(const TestOptions& options);
  // Shuffles first ... first + count - 1, first being at least 1 and count at most a batch: writes their
  // maxima into `swept`, at their indices less 1, and counts what they reach here.
  void run(std::size_t first, std::size_t count, Swept& swept);

  [[nodiscard]] const LaneInts& reached() const { return reached_; }

 private:
  void classifyFreedoms();
  void correlate(const LaneSpan& span, std::size_t freedomClass, Correlations& correlations,
                 std::size_t count);
  void correlateForPseudoT(const LaneSpan& span, Correlations& correlations);
  void tally(const float* values, std::size_t begin, std::size_t end, std::size_t shuffle,
             std::size_t freedomClass);
  void runMaps(Correlations& correlations, std::size_t count);
  void makePseudoT(std::size_t count);
  void makeZ(float* map) const;
  [[nodiscard]] float largestZ(std::size_t shuffle) const;

  const SweepSetting& setting_;
  SplitCache models_;                       // of rows with values after shuffles
  std::vector<int> freedoms_;               // that differ
  std::vector<std::size_t> freedomOfSpan_;  // index into them
  std::vector<ZTable> tables_;              // per freedom
  std::optional<PseudoT> pseudoT_;
  std::optional<Enhancer> enhancer_;
  std::optional<ClusterFinder> finder_;
  LaneFloats maps_, squares_, largest_;  // [shuffle][slot] or of a piece; [shuffle][freedom][lane]
  std::size_t stride_;                   // of maps_
  LaneInts reached_;
};

}  // namespace inference

#endif
