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
    return static_cast<double>(panel / kColumns) * (height + kCaption) + kCaption;
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
  const auto first = static_cast<std::size_t>(row * kColumns);
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

// Lines wherever a voxel of the region borders one outside it, as a path's steps.
std::string outlineOf(const MosaicLayout& layout, const std::vector<std::uint8_t>& region,
                      std::size_t panel) {
  const render::Upright& view = layout.grid.view();
  const int top = layout.slices[panel];
  const auto inside = [&](int right, int front) {
    return right >= 0 && front >= 0 && right < view.dim(0) && front < view.dim(1) &&
           region[layout.voxel(right, front, top)] != 0;
  };
  std::string path;
  for (int front = 0; front < view.dim(1); ++front) {
    for (int right = 0; right < view.dim(0); ++right) {
      if (!inside(right, front)) continue;
      const double w = view.voxelMm(0), h = view.voxelMm(1);
      const double x = layout.x(panel) + right * w, y = layout.y(panel) + (view.dim(1) - 1 - front) * h;
      if (!inside(right - 1, front)) path += fmt::format("M{:.2f} {:.2f}v{:.2f}", x, y, h);
      if (!inside(right + 1, front)) path += fmt::format("M{:.2f} {:.2f}v{:.2f}", x + w, y, h);
      if (!inside(right, front + 1)) path += fmt::format("M{:.2f} {:.2f}h{:.2f}", x, y, w);
      if (!inside(right, front - 1)) path += fmt::format("M{:.2f} {:.2f}h{:.2f}", x, y + h, w);
    }
  }
  return path;
}

// A light line on a dark one.
std::string outlined(const MosaicLayout& layout, const Outline& outline) {
  std::string path;
  for (std::size_t panel = 0; panel < layout.slices.size(); ++panel)
    path += outlineOf(layout, outline.region, panel);
  if (path.empty()) return "";
  return fmt::format(
      "<g fill=\"none\" stroke-linecap=\"square\"><path d=\"{0}\" stroke=\"#000\" "
      "stroke-width=\"2.4\"/><path d=\"{0}\" "
      "stroke=\"{1}\" stroke-width=\"1.2\"/></g>",
      path, outline.colour);
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
      "<text x=\"{:.2f}\" y=\"{:.2f}\">L</text><text x=\"{:.2f}\" y=\"{:.2f}\" text-anchor=\"end\">R</text>"
      "<text x=\"{:.2f}\" y=\"{:.2f}\" text-anchor=\"middle\">z {:.0f}</text>",
      x + 2, middle, x + layout.width - 2, middle, x + layout.width / 2, y - 1.5,
      std::round(heightOf(layout.grid, layout.slices[panel])) + 0.0);  // not -0
}

std::string underlays(const MosaicLayout& layout, const UnderlaySheet& sheet) {
  std::string svg;
  for (std::size_t panel = 0; panel < layout.slices.size(); ++panel)
    svg += sheet.slice(layout.slices[panel], layout.x(panel), layout.y(panel), layout.width, layout.height);
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

std::string mosaic(const PageGrid& grid, const UnderlaySheet& sheet, const MosaicMap& map,
                   const std::vector<int>& slices, const std::string& label) {
  const MosaicLayout layout(grid, slices);
  std::string content = "<rect width=\"100%\" height=\"100%\" fill=\"#000\"/>" + underlays(layout, sheet);
  for (int row = 0; row < layout.rows; ++row) content += overlayRow(layout, map, row);
  for (const Outline& outline : map.outlines) content += outlined(layout, outline);
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
