#include "report/underlay_sheet.h"

#include <fmt/core.h>

#include <cmath>

#include "render/pixels.h"
#include "report/encoding.h"
#include "report/html.h"

namespace report {
namespace {

constexpr const char* kId = "underlay-sheet";

int rowsOf(int slices, int columns) {
  return (slices + columns - 1) / columns;
}

}  // namespace

UnderlaySheet::UnderlaySheet(const PageGrid& grid, const std::vector<std::uint8_t>& levels)
    : width_(grid.view().dim(0)),
      height_(grid.view().dim(1)),
      columns_(static_cast<int>(std::ceil(std::sqrt(grid.view().dim(2))))),
      slices_(grid.view().dim(2)) {
  render::Pixels sheet(columns_ * width_, rowsOf(slices_, columns_) * height_);
  std::size_t voxel = 0;
  for (int top = 0; top < slices_; ++top) {
    for (int front = 0; front < height_; ++front) {
      for (int right = 0; right < width_; ++right) {
        const std::uint8_t grey = levels[voxel++];
        sheet.at((top % columns_) * width_ + right, (top / columns_) * height_ + height_ - 1 - front) = {
            grey, grey, grey, 255};
      }
    }
  }
  png_ = sheet.png();
}

std::string UnderlaySheet::definition() const {
  return single("image", {{"id", kId},
                          {"href", pngUri(png_)},
                          {"width", std::to_string(columns_ * width_)},
                          {"height", std::to_string(rowsOf(slices_, columns_) * height_)}}) +
         "</image>";
}

std::string UnderlaySheet::slice(int top, double x, double y, double width, double height) const {
  return fmt::format(
      "<svg x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" viewBox=\"{} {} {} {}\" "
      "preserveAspectRatio=\"none\"><use href=\"#{}\"/></svg>",
      x, y, width, height, (top % columns_) * width_, (top / columns_) * height_, width_, height_, kId);
}

}  // namespace report
