#include "render/colour_scale.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace render {
namespace {

double channel(std::int32_t colour, int shift) {
  return ((colour >> shift) & 0xFF) / 255.0;
}

double between(std::int32_t from, std::int32_t to, int shift, double share) {
  return channel(from, shift) + (channel(to, shift) - channel(from, shift)) * share;
}

// Colours as they are printed, 0xRRGGBB.
ColourScale scaleOf(std::initializer_list<std::int32_t> printed) {
  ColourScale scale;
  for (const std::int32_t c : printed) scale.push_back((c >> 16) | (c & 0xFF00) | ((c & 0xFF) << 16));
  return scale;
}

}  // namespace

Rgb colourAt(const ColourScale& scale, double share) {
  const double position = std::clamp(share, 0.0, 1.0) * static_cast<double>(scale.size() - 1);
  const auto first = static_cast<std::size_t>(position);
  const std::size_t second = std::min(first + 1, scale.size() - 1);
  const double rest = position - static_cast<double>(first);
  return {between(scale[first], scale[second], 0, rest), between(scale[first], scale[second], 8, rest),
          between(scale[first], scale[second], 16, rest)};
}

ColourScale warmScale() {
  return scaleOf({0xBD0026, 0xE31A1C, 0xFC4E2A, 0xFD8D3C, 0xFEB24C, 0xFED976});
}

ColourScale coldScale() {
  return scaleOf({0x08519C, 0x2171B5, 0x4292C6, 0x6BAED6, 0x9ECAE1});
}

}  // namespace render
