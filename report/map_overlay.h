// How a map lies over the anatomy: colour for its value, and what does not reach the threshold faint rather
// than hidden.
#ifndef TAVMAP_REPORT_MAP_OVERLAY_H
#define TAVMAP_REPORT_MAP_OVERLAY_H

#include <cstdint>
#include <optional>

#include "render/colour_scale.h"
#include "render/pixels.h"

namespace report {

struct OverlayScale {
  std::optional<float> threshold;  // unset: no voxel survives
  float full = 1;                  // the magnitude of full colour, above 0
  bool hasSign = false;            // negative values have colours of their own

  // Values from 0 to here run through the faint colours.
  [[nodiscard]] float faintUpTo() const { return threshold.value_or(full); }
};

// The scale of a map: from the threshold (of the largest q) to `factor` times it; without one up to the
// largest magnitude.
[[nodiscard]] OverlayScale scaleOf(std::optional<double> threshold, float factor, float largest,
                                   bool hasSign);

class MapOverlay {
 public:
  explicit MapOverlay(const OverlayScale& scale);
  // Opaque from the threshold on; below it the first colour, the fainter the smaller the value. Transparent
  // for 0 and what is not finite.
  [[nodiscard]] render::Rgba colour(float value) const;

 private:
  OverlayScale scale_;
  render::ColourScale positive_, negative_;
};

// A voxel that passes while its direction is not supported: half as strong.
[[nodiscard]] render::Rgba unsupported(render::Rgba colour);

}  // namespace report

#endif
