// Which slices a mosaic shows.
#ifndef TAVMAP_RENDER_SLICE_CHOICE_H
#define TAVMAP_RENDER_SLICE_CHOICE_H

#include <vector>

#include "render/upright.h"

namespace render {

// At most `count` positions along the patient's top axis, from the bottom up, spread evenly over
// the range of slices that hold non-zero anatomy (over all slices when there is none).
[[nodiscard]] std::vector<int> chooseSlices(const Upright& view, const std::vector<float>& anatomy,
                                            int count);

}  // namespace render

#endif
