// Colours of a map by how far a value is above the threshold, and the scales that are offered.
#ifndef TAVMAP_RENDER_COLOUR_SCALE_H
#define TAVMAP_RENDER_COLOUR_SCALE_H

#include <cstdint>
#include <vector>

namespace render {

struct Rgb {
  double red, green, blue;  // 0 ... 1
};

// 24-bit colours with red in the lowest byte, evenly spaced from the threshold to full colour. Empty: values
// of this sign are not shown.
using ColourScale = std::vector<std::int32_t>;

// The colour at `share` (0 ... 1) of the way; straight lines between the points. scale: not empty.
[[nodiscard]] Rgb colourAt(const ColourScale& scale, double share);

// The two arms of a diverging scale that people without green or red cones can read: they differ in
// hue from the threshold on and grow lighter outwards, from a saturated colour that is no shadow of
// the anatomy. warmScale() alone is the scale of maps without negative values. Colours of the
// sequential schemes YlOrRd and Blues of Brewer (Harrower & Brewer 2003, The Cartographic Journal 40,
// 27-37, doi:10.1179/000870403235002042), without their darkest and palest ones.
[[nodiscard]] ColourScale warmScale();
[[nodiscard]] ColourScale coldScale();

}  // namespace render

#endif
