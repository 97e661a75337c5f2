// Pictures as plain pixels, and their PNG files.
#ifndef TAVMAP_RENDER_PIXELS_H
#define TAVMAP_RENDER_PIXELS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "render/colour_scale.h"

namespace render {

struct Rgba {
  std::uint8_t red = 0, green = 0, blue = 0, alpha = 0;  // colours as they are, not times alpha
  bool operator==(const Rgba&) const = default;
};

[[nodiscard]] Rgba withAlpha(const Rgb& colour, double alpha);  // alpha 0 ... 1

// Rows from the top, transparent at first.
class Pixels {
 public:
  Pixels(int width, int height);
  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] Rgba& at(int x, int y) { return values_[index(x, y)]; }
  [[nodiscard]] const Rgba& at(int x, int y) const { return values_[index(x, y)]; }
  // The bytes of a PNG file. Throws std::runtime_error when the drawing library fails.
  [[nodiscard]] std::string png() const;

 private:
  [[nodiscard]] std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
  }
  int width_, height_;
  std::vector<Rgba> values_;
};

}  // namespace render

#endif
