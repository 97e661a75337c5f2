// Whether a p of a map is within a level.
#ifndef TAVMAP_INFERENCE_LEVEL_H
#define TAVMAP_INFERENCE_LEVEL_H

namespace inference {

// p or q as maps hold them, as floats. The level is taken as one too: as a double, .05 is less than as a
// float, and a p that equals the level would not be within it. Not for what is not a number.
[[nodiscard]] inline bool isWithin(float p, double level) {
  return p <= static_cast<float>(level);
}

}  // namespace inference

#endif
