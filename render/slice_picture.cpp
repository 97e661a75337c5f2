#include "render/slice_picture.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

#include "render/canvas.h"
#include "render/slice_choice.h"

namespace render {
namespace {

constexpr double kPixelsPerMm = 1.3;
constexpr double kMargin = 12;
constexpr double kHeader = 54;
constexpr double kFooter = 56;
constexpr int kColumns = 5;
// A colour of neither arm of the readable scale, on a dark line that parts it from what it crosses.
constexpr Pen kOutline{{0, 1, 1}, 2};
constexpr Pen kOutlineCasing{{0, 0, 0}, 4};

// One place of the mosaic: the slice and the pixel position of its top left corner.
struct Panel {
  int top;
  double x, y;
};

struct Layout {
  Upright view;
  double voxelWidth, voxelHeight;  // pixels
  double panelWidth, panelHeight;
  std::vector<Panel> panels;
  int width, height;
};

void requireSize(std::size_t size, std::size_t voxels, const char* what) {
  if (size != voxels) throw std::runtime_error(fmt::format("the {} does not fit the grid of the map", what));
}

void checkSizes(const SlicePicture& p) {
  const std::size_t voxels = p.size.voxels();
  requireSize(p.anatomy.size(), voxels, "anatomy");
  requireSize(p.map.size(), voxels, "map data");
  if (!p.reference.empty()) requireSize(p.reference.size(), voxels, "reference region");
}

Layout layOut(const SlicePicture& p) {
  Layout layout{Upright(p.size, p.affine), 0, 0, 0, 0, {}, 0, 0};
  layout.voxelWidth = layout.view.voxelMm(0) * kPixelsPerMm;
  layout.voxelHeight = layout.view.voxelMm(1) * kPixelsPerMm;
  layout.panelWidth = layout.view.dim(0) * layout.voxelWidth;
  layout.panelHeight = layout.view.dim(1) * layout.voxelHeight;
  const auto tops = chooseSlices(layout.view, p.anatomy, p.slices);
  for (std::size_t n = 0; n < tops.size(); ++n) {
    const int column = static_cast<int>(n) % kColumns;
    const int row = static_cast<int>(n) / kColumns;
    layout.panels.push_back({tops[n], kMargin + column * (layout.panelWidth + kMargin),
                             kHeader + row * (layout.panelHeight + kMargin)});
  }
  const int rows = (static_cast<int>(tops.size()) + kColumns - 1) / kColumns;
  const int columns = std::min(kColumns, static_cast<int>(tops.size()));
  layout.width = static_cast<int>(std::ceil(kMargin + columns * (layout.panelWidth + kMargin)));
  layout.height = static_cast<int>(std::ceil(kHeader + rows * (layout.panelHeight + kMargin) + kFooter));
  return layout;
}

// Grey levels: the 99th percentile of the non-zero anatomy is white.
float whiteLevel(const std::vector<float>& anatomy) {
  std::vector<float> values;
  std::copy_if(anatomy.begin(), anatomy.end(), std::back_inserter(values), [](float v) { return v > 0; });
  if (values.empty()) return 1;
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() * 99 / 100);
  std::nth_element(values.begin(), at, values.end());
  return *at;
}

bool isShown(const SlicePicture& p, float value) {
  if (!(std::abs(value) >= p.lower) || value == 0) return false;
  return !(value > 0 ? p.positive : p.negative).empty();
}

Rgb mapColour(const SlicePicture& p, float value) {
  const float span = p.upper > p.lower ? p.upper - p.lower : 1;
  const double share = std::clamp(static_cast<double>((std::abs(value) - p.lower) / span), 0.0, 1.0);
  return colourAt(value > 0 ? p.positive : p.negative, share);
}

template <typename Draw>
void forEachVoxel(const Layout& layout, const Panel& panel, Draw draw) {
  for (int front = 0; front < layout.view.dim(1); ++front) {
    for (int right = 0; right < layout.view.dim(0); ++right) {
      const double x = panel.x + right * layout.voxelWidth;
      const double y = panel.y + (layout.view.dim(1) - 1 - front) * layout.voxelHeight;
      draw(right, front, layout.view.storedIndex(right, front, panel.top), x, y);
    }
  }
}

void drawAnatomyAndMap(Canvas& canvas, const SlicePicture& p, const Layout& layout, const Panel& panel,
                       float white) {
  forEachVoxel(layout, panel, [&](int, int, std::size_t voxel, double x, double y) {
    const double grey = std::clamp(static_cast<double>(p.anatomy[voxel] / white), 0.0, 1.0);
    const Rgb colour = isShown(p, p.map[voxel]) ? mapColour(p, p.map[voxel]) : Rgb{grey, grey, grey};
    canvas.fillRectangle(x, y, layout.voxelWidth, layout.voxelHeight, colour);
  });
}

// A line wherever a voxel of the region borders one outside it.
void drawOutline(Canvas& canvas, const SlicePicture& p, const Layout& layout, const Panel& panel,
                 const Pen& pen) {
  const auto inside = [&](int right, int front) {
    return right >= 0 && front >= 0 && right < layout.view.dim(0) && front < layout.view.dim(1) &&
           p.reference[layout.view.storedIndex(right, front, panel.top)] != 0;
  };
  forEachVoxel(layout, panel, [&](int right, int front, std::size_t, double x, double y) {
    if (!inside(right, front)) return;
    const double w = layout.voxelWidth, h = layout.voxelHeight;
    if (!inside(right - 1, front)) canvas.line(x, y, x, y + h, pen);
    if (!inside(right + 1, front)) canvas.line(x + w, y, x + w, y + h, pen);
    if (!inside(right, front + 1)) canvas.line(x, y, x + w, y, pen);
    if (!inside(right, front - 1)) canvas.line(x, y + h, x + w, y + h, pen);
  });
}

// 0 - x where x has a sign: -0 would be written as such.
std::string rangeLabel(float lower, float upper) {
  char text[64];
  std::snprintf(text, sizeof text, "%.3g to %.3g", static_cast<double>(lower), static_cast<double>(upper));
  return text;
}

// Returns where the next bar begins.
double drawColourBar(Canvas& canvas, const ColourScale& scale, const std::string& label, double x, double y) {
  constexpr int kSteps = 100;
  for (int n = 0; n < kSteps; ++n) {
    canvas.fillRectangle(x + n, y, 1, 12, colourAt(scale, static_cast<double>(n) / (kSteps - 1)));
  }
  canvas.text(x + kSteps + 6, y + 11, 13, label);
  return x + kSteps + 6 + canvas.textWidth(13, label) + 24;
}

void drawFrame(Canvas& canvas, const SlicePicture& p, const Layout& layout) {
  canvas.text(kMargin, 22, 17, p.title);
  canvas.text(kMargin, 42, 13, p.caption);
  const double y = layout.height - kFooter + 8;
  double x = kMargin;
  if (!p.positive.empty()) x = drawColourBar(canvas, p.positive, rangeLabel(p.lower, p.upper), x, y);
  if (!p.negative.empty()) drawColourBar(canvas, p.negative, rangeLabel(0 - p.lower, 0 - p.upper), x, y);
  canvas.text(kMargin, y + 34, 13,
              "Axial slices, bottom to top. L: the patient's left." +
                  std::string(p.reference.empty() ? "" : " Outlined: the region of the title."));
}

void drawPanel(Canvas& canvas, const SlicePicture& p, const Layout& layout, const Panel& panel, float white) {
  drawAnatomyAndMap(canvas, p, layout, panel, white);
  if (!p.reference.empty())
    for (const Pen& pen : {kOutlineCasing, kOutline}) drawOutline(canvas, p, layout, panel, pen);
  canvas.text(panel.x + 3, panel.y + layout.panelHeight / 2, 12, "L");
  canvas.text(panel.x + layout.panelWidth - 12, panel.y + layout.panelHeight / 2, 12, "R");
}

}  // namespace

std::string renderPng(const SlicePicture& picture) {
  checkSizes(picture);
  const Layout layout = layOut(picture);
  Canvas canvas(std::max(layout.width, 420), layout.height);
  const float white = whiteLevel(picture.anatomy);
  for (const Panel& panel : layout.panels) drawPanel(canvas, picture, layout, panel, white);
  drawFrame(canvas, picture, layout);
  return canvas.png();
}

}  // namespace render
