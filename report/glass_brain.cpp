#include "report/glass_brain.h"

#include <fmt/core.h>

#include <array>
#include <vector>

#include "report/encoding.h"
#include "report/html.h"

namespace report {
namespace {

constexpr double kGlassGap = 8;      // between views, mm
constexpr double kViewCaption = 10;  // height of the line above a view, mm
constexpr render::Rgba kBrain{127, 127, 127, 60};

// A view along one axis: which axes run across and down, and whether they run against the picture.
struct View {
  std::size_t across, down, along;
  bool isMirrored;                    // across runs from right to left of the picture
  const char *name, *first, *second;  // letters at the sides
};
// Front to the left, seen from the left; then left on the left.
constexpr std::array<View, 3> kViews = {{{1, 2, 0, true, "from the left", "A", "P"},
                                         {0, 2, 1, false, "from behind", "L", "R"},
                                         {0, 1, 2, false, "from above", "L", "R"}}};

struct Seen {
  bool isInside = false;
  float strength = 0;
  std::size_t voxel = 0;
};

std::vector<Seen> seenAlong(const PageGrid& grid, const GlassMap& map, const View& view) {
  const auto width = static_cast<std::size_t>(grid.view().dim(view.across));
  std::vector<Seen> seen(width * static_cast<std::size_t>(grid.view().dim(view.down)));
  std::array<std::size_t, 3> at{};
  std::size_t voxel = 0;
  const auto dim = [&](std::size_t axis) { return static_cast<std::size_t>(grid.view().dim(axis)); };
  for (at[2] = 0; at[2] < dim(2); ++at[2]) {
    for (at[1] = 0; at[1] < dim(1); ++at[1]) {
      for (at[0] = 0; at[0] < dim(0); ++at[0], ++voxel) {
        Seen& line = seen[at[view.down] * width + at[view.across]];
        line.isInside = line.isInside || map.isInside(voxel);
        const float strength = map.strength(voxel);
        if (strength > line.strength) line.strength = strength, line.voxel = voxel;
      }
    }
  }
  return seen;
}

render::Pixels pixelsOf(const PageGrid& grid, const GlassMap& map, const View& view) {
  const int width = grid.view().dim(view.across), height = grid.view().dim(view.down);
  const std::vector<Seen> seen = seenAlong(grid, map, view);
  render::Pixels pixels(width, height);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const Seen& line = seen[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                              static_cast<std::size_t>(column)];
      render::Rgba& pixel = pixels.at(view.isMirrored ? width - 1 - column : column, height - 1 - row);
      if (line.strength > 0)
        pixel = map.colour(line.voxel);
      else if (line.isInside)
        pixel = kBrain;
    }
  }
  return pixels;
}

double extent(const PageGrid& grid, std::size_t axis) {
  return grid.view().dim(axis) * grid.view().voxelMm(axis);
}

}  // namespace

std::string glassBrain(const PageGrid& grid, const GlassMap& map, const std::string& label) {
  std::string content;
  double x = 0, tallest = 0;
  for (const View& view : kViews) {
    const double width = extent(grid, view.across), height = extent(grid, view.down),
                 middle = kViewCaption + height / 2;
    content += fmt::format(
        "<image x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" preserveAspectRatio=\"none\" "
        "style=\"image-rendering:pixelated\" href=\"{}\"/>"
        "<text x=\"{:.2f}\" y=\"7\" text-anchor=\"middle\">{}</text><text x=\"{:.2f}\" y=\"{:.2f}\">{}</text>"
        "<text x=\"{:.2f}\" y=\"{:.2f}\" text-anchor=\"end\">{}</text>",
        x, kViewCaption, width, height, pngUri(pixelsOf(grid, map, view).png()), x + width / 2, view.name,
        x + 1, middle, view.first, x + width - 1, middle, view.second);
    x += width + kGlassGap;
    tallest = std::max(tallest, height);
  }
  const std::string box = fmt::format("0 0 {:.2f} {:.2f}", x - kGlassGap, kViewCaption + tallest);
  return element("svg",
                 {{"xmlns", "http://www.w3.org/2000/svg"},
                  {"class", "glass-brain"},
                  {"viewBox", box},
                  {"role", "img"},
                  {"aria-label", label}},
                 "<g fill=\"currentColor\" font-size=\"7\" font-family=\"sans-serif\">" + content + "</g>");
}

}  // namespace report
