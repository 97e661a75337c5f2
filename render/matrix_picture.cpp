#include "render/matrix_picture.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "render/canvas.h"

namespace render {
namespace {

constexpr Rgb kNothing{0.35, 0.35, 0.35}, kGround{0.07, 0.07, 0.07}, kLine{0.75, 0.75, 0.75};
constexpr double kFaint = 0.35;
constexpr int kMatrixMargin = 16, kTitle = 40, kNames = 130, kBar = 70;

Rgb between(const Rgb& from, const Rgb& to, double share) {
  const auto mix = [share](double a, double b) { return a + share * (b - a); };
  return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue)};
}

void fillCells(const MatrixPicture& picture, double left, double top, double cell, Canvas& canvas) {
  for (std::size_t row = 0; row < picture.size; ++row) {
    for (std::size_t column = 0; column < picture.size; ++column) {
      const std::size_t at = row * picture.size + column;
      const Rgb colour = cellColour(picture.values[at], picture.full, picture.isEmphasised[at] != 0);
      canvas.fillRectangle(left + cell * static_cast<double>(column), top + cell * static_cast<double>(row),
                           cell, cell, colour);
    }
  }
}

void endingAt(double right, double baseline, double size, const std::string& words, Canvas& canvas) {
  canvas.text(std::max(4.0, right - canvas.textWidth(size, words)), baseline, size, words);
}

void drawGroups(const MatrixPicture& picture, double left, double top, double cell, Canvas& canvas) {
  const double size = cell * static_cast<double>(picture.size);
  for (const MatrixGroup& group : picture.groups) {
    const double begin = cell * static_cast<double>(group.first), end = cell * static_cast<double>(group.end);
    canvas.line(left + end, top, left + end, top + size, {kLine, 1});
    canvas.line(left, top + end, left + size, top + end, {kLine, 1});
    if (picture.names.empty()) endingAt(left - 8, top + (begin + end) / 2 + 4, 12, group.name, canvas);
  }
}

void drawNames(const MatrixPicture& picture, double left, double top, double cell, Canvas& canvas) {
  const double below = top + cell * static_cast<double>(picture.size), size = nameSize(cell);
  for (std::size_t row = 0; row < picture.names.size(); ++row) {
    const double middle = cell * (static_cast<double>(row) + 0.5) + size / 3;
    const std::string name = shortName(picture.names[row]);
    endingAt(left - 8, top + middle, size, name, canvas);
    canvas.textUpwards(left + middle, below + 8 + canvas.textWidth(size, name), size, name);
  }
}

// Colours from -full (or 0) to full.
void drawBar(const MatrixPicture& picture, double left, double top, double width, Canvas& canvas) {
  const bool hasNegative =
      std::any_of(picture.values.begin(), picture.values.end(), [](double v) { return v < 0; });
  const double least = hasNegative ? -picture.full : 0;
  for (int x = 0; x < static_cast<int>(width); ++x) {
    const double value = least + (picture.full - least) * x / width;
    canvas.fillRectangle(left + x, top, 1, 14, cellColour(value, picture.full, true));
  }
  canvas.text(left, top + 30, 12, fmt::format("{:.3g}", least));
  const std::string most = fmt::format("{:.3g} or more", picture.full);
  canvas.text(left + width - canvas.textWidth(12, most), top + 30, 12, most);
  canvas.text(left, top + 48, 12, picture.caption);
}

}  // namespace

double nameSize(double cell) {
  return std::min(12.0, 0.8 * cell);
}

std::string shortName(const std::string& utf8) {
  constexpr std::size_t kMost = 18;
  std::string kept;
  std::size_t letters = 0;
  for (const char byte : utf8) {
    const bool begins =
        (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;  // a letter, not its further bytes
    if (begins && ++letters > kMost) return kept + "\u2026";
    kept += byte;
  }
  return kept;
}

Rgb cellColour(double value, double full, bool isEmphasised) {
  if (std::isnan(value)) return kNothing;
  const double share = full > 0 ? std::min(std::abs(value) / full, 1.0) : 0;
  const Rgb colour = colourAt(value < 0 ? coldScale() : warmScale(), share);
  // From the ground to the scale within its first fifth.
  return between(kGround, colour, std::min(share * 5, 1.0) * (isEmphasised ? 1 : kFaint));
}

std::string matrixPixels(const MatrixPicture& picture) {
  const int size = std::max(1, static_cast<int>(picture.size));
  Canvas canvas(size, size);
  fillCells(picture, 0, 0, 1, canvas);
  return canvas.png();
}

std::string drawMatrix(const MatrixPicture& picture, int cell) {
  const int side = std::max(320, cell * static_cast<int>(picture.size));
  const int below = picture.names.empty() ? 0 : kNames;
  const int width = kNames + side + kMatrixMargin, height = kTitle + side + below + kBar + kMatrixMargin;
  Canvas canvas(width, height);
  canvas.fillRectangle(0, 0, width, height, kGround);
  canvas.text(kMatrixMargin, 26, 15, picture.title);
  const double unit = static_cast<double>(side) / static_cast<double>(std::max<std::size_t>(1, picture.size));
  fillCells(picture, kNames, kTitle, unit, canvas);
  drawGroups(picture, kNames, kTitle, unit, canvas);
  drawNames(picture, kNames, kTitle, unit, canvas);
  drawBar(picture, kNames, kTitle + side + below + kMatrixMargin, side, canvas);
  return canvas.png();
}

int cellPixels(std::size_t size) {
  constexpr std::size_t kWidth = 800;
  return static_cast<int>(std::max<std::size_t>(1, kWidth / std::max<std::size_t>(1, size)));
}

}  // namespace render
