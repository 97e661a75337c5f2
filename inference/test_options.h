// How a group is tested.
#ifndef TAVMAP_INFERENCE_TEST_OPTIONS_H
#define TAVMAP_INFERENCE_TEST_OPTIONS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace inference {

// What holds of the errors when there is no effect: symmetric about 0, or the same whatever their order.
enum class Exchange { kSignFlips, kPermutations };

// Threshold-free cluster enhancement of Z: the integral of extent^E height^H over all heights below a place's
// own (Smith & Nichols 2009, NeuroImage 44, doi:10.1016/j.neuroimage.2008.03.061).
struct Enhancement {
  double extentPower = 0.5, heightPower = 2;
  // 0: the integral itself. Else the sum over heights step, 2 step, ..., not multiplied by the step.
  double step = 0;
};

// How the tail of a null of maxima is read.
enum class Tail {
  kCounted,  // counts of shuffles alone
  kSmooth,   // a fitted distribution when fewer than kFewShuffles were drawn (not when all are listed), see
             // tail.h
};

inline constexpr int kFewShuffles = 1000;

struct TestOptions {
  Exchange exchange = Exchange::kSignFlips;
  // Per row; empty: none. Permutations exchange within blocks only; sign flips turn a block's rows together.
  std::vector<int> blocks;
  int shuffles = 5000;        // drawn, beside the data as they are; all there are when there are no more
  std::uint32_t seed = 1;     // shuffles depend on it and on their index alone
  double varianceFwhmMm = 0;  // 0: plain t. Else variances are smoothed; wants a space of voxels
  bool enhance = true;
  Enhancement enhancement;
  double clusterFormingZ = 3.1;  // 0: no clusters
  double smallestShare = 0.8;    // of all rows that must have a value where a place is tested
  bool twoSided = true;          // else only positive effects count
  Tail tail = Tail::kSmooth;
  int threads = 1;  // nothing of it shows in results
  // Called now and then, by one thread at a time, not always the caller's.
  std::function<void(std::size_t done, std::size_t all)> progress;
};

}  // namespace inference

#endif
