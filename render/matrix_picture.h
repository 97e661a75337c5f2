// A matrix of edges as a picture.
#ifndef TAVMAP_RENDER_MATRIX_PICTURE_H
#define TAVMAP_RENDER_MATRIX_PICTURE_H

#include <cstddef>
#include <string>
#include <vector>

#include "render/colour_scale.h"

namespace render {

// Rows first ... end - 1 of a matrix, and the columns of the same numbers.
struct MatrixGroup {
  std::size_t first, end;
  std::string name;
};

// In the order in which rows and columns are shown.
struct MatrixPicture {
  std::size_t size = 0;
  std::vector<double> values;       // row-major; NaN: nothing, grey
  std::vector<char> isEmphasised;   // the same; others are drawn faint
  double full = 1;                  // the magnitude that gets full colour
  std::vector<MatrixGroup> groups;  // ascending; none: no lines
  std::vector<std::string>
      names;                   // UTF-8, of rows and columns, shown beside and below; empty: those of groups
  std::string title, caption;  // UTF-8; above and below
};

// Matrices of at most so many rows have room for the name of each.
inline constexpr std::size_t kMostNamedRows = 40;
// Height of letters in cells of this size, pixels.
[[nodiscard]] double nameSize(double cell);
// What has room of a name: its beginning, and a mark where something is left out.
[[nodiscard]] std::string shortName(const std::string& utf8);

// Colour of a value: near black at 0, the warm scale above and the cold one below.
[[nodiscard]] Rgb cellColour(double value, double full, bool isEmphasised);

// One pixel per cell, as PNG bytes.
[[nodiscard]] std::string matrixPixels(const MatrixPicture& picture);

// With title, groups, their names and a bar of colours on a ground of its own, as PNG bytes; cells of `cell`
// pixels.
[[nodiscard]] std::string drawMatrix(const MatrixPicture& picture, int cell);

// Pixels per cell that make a matrix about 800 pixels wide, at least 1.
[[nodiscard]] int cellPixels(std::size_t size);

}  // namespace render

#endif
