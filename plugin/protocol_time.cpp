#include "plugin/protocol_time.h"

#include <algorithm>

namespace {

// Halves go up; negative times are truncated towards zero after rounding. |timeMs / trMs| fits an int.
int nearestVolume(int timeMs, int trMs) {
  return static_cast<int>(static_cast<long double>(timeMs) / static_cast<long double>(trMs) + 0.5L);
}

}  // namespace

tav::TAV_intv volumesOfMilliseconds(int startMs, int endMs, int trMs) {
  // INT_MAX at a repetition time of 1 ms would not leave room for the step to 1-based numbers.
  const int first = std::min(nearestVolume(startMs, trMs), 2147483646) + 1;
  return {first, std::max(first, nearestVolume(endMs, trMs))};
}
