#include "render/pixels.h"

#include <cmath>

#include "render/png_surface.h"

namespace render {
namespace {

std::uint8_t byteOf(double share) {
  return static_cast<std::uint8_t>(std::lround(255 * share));
}

// The drawing library keeps colours times alpha.
std::uint32_t premultiplied(const Rgba& pixel) {
  const auto times = [&](std::uint8_t colour) {
    return static_cast<std::uint32_t>((colour * pixel.alpha + 127) / 255);
  };
  return static_cast<std::uint32_t>(pixel.alpha) << 24U | times(pixel.red) << 16U | times(pixel.green) << 8U |
         times(pixel.blue);
}

}  // namespace

Rgba withAlpha(const Rgb& colour, double alpha) {
  return {byteOf(colour.red), byteOf(colour.green), byteOf(colour.blue), byteOf(alpha)};
}

Pixels::Pixels(int width, int height)
    : width_(width),
      height_(height),
      values_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

std::string Pixels::png() const {
  std::vector<std::uint32_t> words;
  words.reserve(values_.size());
  for (const Rgba& pixel : values_) words.push_back(premultiplied(pixel));
  return pngOfWords(width_, height_, words);
}

}  // namespace render
