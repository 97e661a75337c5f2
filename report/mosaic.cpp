#include "report/mosaic.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "render/slice_choice.h"
#include "report/encoding.h"
#include "report/html.h"

namespace report {
namespace {

constexpr int kColumns = 5;
constexpr double kCaption = 9;  // height of the line above a panel, mm

struct MosaicLayout {
  MosaicLayout(const PageGrid& pageGrid, const std::vector<int>& chosen)
      : grid(pageGrid),
        slices(chosen),
        columns(std::min(kColumns, static_cast<int>(chosen.size()))),
        rows((static_cast<int>(chosen.size()) + kColumns - 1) / kColumns),
        width(pageGrid.view().dim(0) * pageGrid.view().voxelMm(0)),
        height(pageGrid.view().dim(1) * pageGrid.view().voxelMm(1)) {}
  const PageGrid& grid;
  const std::vector<int>& slices;
  int columns, rows;
  double width, height;  // of a panel's slice

  [[nodiscard]] double x(std::size_t panel) const { return static_cast<double>(panel % kColumns) * width; }
  [[nodiscard]] double y(std::size_t panel) const {
    const std::size_t row = panel / kColumns;
    return static_cast<double>(row) * (height + kCaption) + kCaption;
  }
  [[nodiscard]] std::size_t voxel(int right, int front, int top) const {
    const auto dim = [&](std::size_t axis) { return static_cast<std::size_t>(grid.view().dim(axis)); };
    return (static_cast<std::size_t>(top) * dim(1) + static_cast<std::size_t>(front)) * dim(0) +
           static_cast<std::size_t>(right);
  }
};

// The overlay of the slices in one row, one pixel per voxel.
std::string overlayRow(const MosaicLayout& layout, const MosaicMap& map, int row) {
  const render::Upright& view = layout.grid.view();
  const std::size_t first = static_cast<std::size_t>(row) * kColumns;
  const std::size_t end = std::min(first + kColumns, layout.slices.size());
  render::Pixels pixels(static_cast<int>(end - first) * view.dim(0), view.dim(1));
  for (std::size_t panel = first; panel < end; ++panel) {
    const int left = static_cast<int>(panel - first) * view.dim(0);
    for (int front = 0; front < view.dim(1); ++front)
      for (int right = 0; right < view.dim(0); ++right)
        pixels.at(left + right, view.dim(1) - 1 - front) =
            map.colour(layout.voxel(right, front, layout.slices[panel]));
  }
  return fmt::format(
      "<image x=\"0\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" preserveAspectRatio=\"none\" "
      "style=\"image-rendering:pixelated\" href=\"{}\"/>",
      layout.y(first), static_cast<double>(end - first) * layout.width, layout.height, pngUri(pixels.png()));
}

// Where neighbours along one side of a line of voxels differ: "M3 7h4" for edges 3 to 6 of seven. differs(i):
// whether edge i is part of the outline; step: 'h' or 'v'.
template <typename Differs>
std::string edgesAlong(int count, char step, int at, Differs differs) {
  std::string path;
  for (int first = 0; first < count; ++first) {
    if (!differs(first)) continue;
    int end = first;
    while (end < count && differs(end)) ++end;
    path += step == 'h' ? fmt::format("M{} {}h{}", first, at, end - first)
                        : fmt::format("M{} {}v{}", at, first, end - first);
    first = end;
  }
  return path;
}

// Lines wherever a voxel of the region borders one outside it, as a path's steps in voxels from the top left.
std::string outlineOf(const MosaicLayout& layout, const std::vector<std::uint8_t>& region, int top) {
  const int columns = layout.grid.view().dim(0), rows = layout.grid.view().dim(1);
  const auto inside = [&](int column, int row) {
    return column >= 0 && row >= 0 && column < columns && row < rows &&
           region[layout.voxel(column, rows - 1 - row, top)] != 0;
  };
  std::string path;
  for (int row = 0; row <= rows; ++row)
    path += edgesAlong(columns, 'h', row, [&](int i) { return inside(i, row) != inside(i, row - 1); });
  for (int column = 0; column <= columns; ++column)
    path += edgesAlong(rows, 'v', column, [&](int i) { return inside(column, i) != inside(column - 1, i); });
  return path;
}

// A light line on a dark one, drawn twice from one path; widths are those of the screen.
std::string outlined(const MosaicLayout& layout, const Outline& outline, const std::string& id) {
  std::string paths;
  for (std::size_t panel = 0; panel < layout.slices.size(); ++panel) {
    const std::string path = outlineOf(layout, outline.region, layout.slices[panel]);
    if (path.empty()) continue;
    paths += fmt::format(
        "<path transform=\"translate({:.2f} {:.2f}) scale({:.4g} {:.4g})\" "
        "vector-effect=\"non-scaling-stroke\" d=\"{}\"/>",
        layout.x(panel), layout.y(panel), layout.grid.view().voxelMm(0), layout.grid.view().voxelMm(1), path);
  }
  if (paths.empty()) return "";
  return fmt::format(
      "<defs><g id=\"{0}\" fill=\"none\" stroke-linecap=\"square\">{1}</g></defs><use href=\"#{0}\" "
      "stroke=\"#000\" "
      "stroke-width=\"3.5\"/><use href=\"#{0}\" stroke=\"{2}\" stroke-width=\"1.5\"/>",
      id, paths, outline.colour);
}

// Millimetres from below of a slice's centre; of oblique slices that of its middle.
double heightOf(const PageGrid& grid, int top) {
  const render::Affine affine = grid.view().affine();
  return affine[8] * (grid.view().dim(0) - 1) / 2 + affine[9] * (grid.view().dim(1) - 1) / 2 +
         affine[10] * top + affine[11];
}

std::string panelTexts(const MosaicLayout& layout, std::size_t panel) {
  const double x = layout.x(panel), y = layout.y(panel), middle = y + layout.height / 2;
  return fmt::format(
      "<text x=\"{:.0f}\" y=\"{:.0f}\">L</text><text x=\"{:.0f}\" y=\"{:.0f}\" text-anchor=\"end\">R</text>"
      "<text x=\"{:.0f}\" y=\"{:.0f}\" text-anchor=\"middle\">z {:.0f}</text>",
      x + 2, middle, x + layout.width - 2, middle, x + layout.width / 2, y - 1.5,
      std::round(heightOf(layout.grid, layout.slices[panel])) + 0.0);  // not -0
}

std::string underlays(const MosaicLayout& layout) {
  std::string svg;
  for (std::size_t panel = 0; panel < layout.slices.size(); ++panel)
    svg += UnderlaySheet::slice(layout.slices[panel], layout.x(panel), layout.y(panel), layout.width,
                                layout.height);
  return svg;
}

void takePlace(std::vector<int>& slices, std::vector<bool>& isWanted, int wanted) {
  std::size_t nearest = slices.size();
  for (std::size_t i = 0; i < slices.size(); ++i) {
    if (slices[i] == wanted) nearest = i;
    if (isWanted[i]) continue;
    if (nearest == slices.size() || std::abs(slices[i] - wanted) < std::abs(slices[nearest] - wanted))
      nearest = i;
  }
  if (nearest == slices.size()) return;
  slices[nearest] = wanted;
  isWanted[nearest] = true;
}

}  // namespace

std::vector<int> mosaicSlices(const PageGrid& grid, const std::vector<float>& underlay,
                              const std::vector<int>& wanted) {
  std::vector<int> slices = render::chooseSlices(grid.view(), underlay, kMosaicSlices);
  std::vector<bool> isWanted(slices.size(), false);
  for (const int slice : wanted)
    if (std::find(slices.begin(), slices.end(), slice) != slices.end())
      isWanted[static_cast<std::size_t>(std::find(slices.begin(), slices.end(), slice) - slices.begin())] =
          true;
  for (const int slice : wanted)
    if (std::find(slices.begin(), slices.end(), slice) == slices.end()) takePlace(slices, isWanted, slice);
  std::sort(slices.begin(), slices.end());
  return slices;
}

std::string mosaic(const PageGrid& grid, const MosaicMap& map, const std::vector<int>& slices,
                   const std::string& label) {
  const MosaicLayout layout(grid, slices);
  std::string content = "<rect width=\"100%\" height=\"100%\" fill=\"#000\"/>" + underlays(layout);
  for (int row = 0; row < layout.rows; ++row) content += overlayRow(layout, map, row);
  for (std::size_t i = 0; i < map.outlines.size(); ++i)
    content += outlined(layout, map.outlines[i], fmt::format("{}-outline-{}", map.id, i));
  content += "<g fill=\"#fff\" font-size=\"8\" font-family=\"sans-serif\">";
  for (std::size_t panel = 0; panel < slices.size(); ++panel) content += panelTexts(layout, panel);
  content += "</g>";
  const std::string box = fmt::format("0 0 {:.2f} {:.2f}", layout.columns * layout.width,
                                      layout.rows * (layout.height + kCaption));
  return element(
      "svg",
      {{"xmlns", "http://www.w3.org/2000/svg"}, {"viewBox", box}, {"role", "img"}, {"aria-label", label}},
      content);
}

}  // namespace report
