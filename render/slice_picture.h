// One map over the anatomy as a mosaic of axial slices: the patient's left on the left, the front
// at the top, the reference region outlined, the map in its own colours.
#ifndef TAVMAP_RENDER_SLICE_PICTURE_H
#define TAVMAP_RENDER_SLICE_PICTURE_H

#include <cstdint>
#include <string>
#include <vector>

#include "io/grid_size.h"
#include "render/colour_scale.h"
#include "render/upright.h"

namespace render {

// All volumes share one grid, first axis fastest.
struct SlicePicture {
  io::GridSize size;
  Affine affine{};
  std::vector<float> anatomy;
  std::vector<float> map;
  std::vector<std::uint8_t> reference;  // non-zero inside the region; empty: nothing is outlined
  // |value| >= lower is coloured; full colour from |value| = upper on.
  float lower = 0;
  float upper = 1;
  ColourScale positive, negative;
  std::string title;
  std::string caption;
  int slices = 15;  // at most; spread evenly over the slices that hold anatomy
};

// The picture as the bytes of a PNG file. Throws std::runtime_error when a volume does not fit
// the grid or the drawing library fails.
[[nodiscard]] std::string renderPng(const SlicePicture& picture);

}  // namespace render

#endif
