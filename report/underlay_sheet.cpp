#include "report/underlay_sheet.h"

#include <fmt/core.h>

#include <cmath>

#include "render/pixels.h"
#include "report/encoding.h"
#include "report/html.h"

namespace report {
namespace {

constexpr const char* kId = "underlay-sheet";

}  // namespace

UnderlaySheet::UnderlaySheet(const PageGrid& grid, const std::vector<std::uint8_t>& levels)
    : width_(grid.view().dim(0)),
      height_(grid.view().dim(1)),
      columns_(static_cast<int>(std::ceil(std::sqrt(grid.view().dim(2))))),
      slices_(grid.view().dim(2)),
      sheetWidth_(columns_ * (width_ + kGap)),
      sheetHeight_((slices_ + columns_ - 1) / columns_ * (height_ + kGap)) {
  render::Pixels sheet(sheetWidth_, sheetHeight_);
  std::size_t voxel = 0;
  for (int top = 0; top < slices_; ++top) {
    for (int front = 0; front < height_; ++front) {
      for (int right = 0; right < width_; ++right) {
        const std::uint8_t grey = levels[voxel++];
        sheet.at(xOf(top) + right, yOf(top) + height_ - 1 - front) = {grey, grey, grey, 255};
      }
    }
  }
  png_ = sheet.png();
}

std::string UnderlaySheet::definition() const {
  std::string svg = single("image", {{"id", kId},
                                     {"href", pngUri(png_)},
                                     {"width", std::to_string(sheetWidth_)},
                                     {"height", std::to_string(sheetHeight_)}}) +
                    "</image>";
  for (int top = 0; top < slices_; ++top)
    svg += fmt::format(
        "<symbol id=\"u{}\" viewBox=\"{} {} {} {}\" preserveAspectRatio=\"none\"><use "
        "href=\"#{}\"/></symbol>",
        top, xOf(top), yOf(top), width_, height_, kId);
  return svg;
}

std::string UnderlaySheet::standalone(std::string svg, const std::string& id) const {
  const std::string alone = "picture";
  for (std::size_t at = 0; (at = svg.find(id + "-outline", at)) != std::string::npos; at += alone.size())
    svg.replace(at, id.size(), alone);
  return svg.insert(svg.find('>') + 1, "<defs>" + definition() + "</defs>");
}

std::string UnderlaySheet::slice(int top, double x, double y, double width, double height) {
  return fmt::format("<use href=\"#u{}\" x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\"/>", top,
                     x, y, width, height);
}

}  // namespace report
