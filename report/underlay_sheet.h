// All axial slices of the underlay on one sheet, which every mosaic of a page shows pieces of.
#ifndef TAVMAP_REPORT_UNDERLAY_SHEET_H
#define TAVMAP_REPORT_UNDERLAY_SHEET_H

#include <cstdint>
#include <string>
#include <vector>

#include "report/page_grid.h"

namespace report {

class UnderlaySheet {
 public:
  // levels: grey, in upright order.
  UnderlaySheet(const PageGrid& grid, const std::vector<std::uint8_t>& levels);

  // The sheet as an SVG image element with an id, to stand once on a page (or in a file), before use.
  [[nodiscard]] std::string definition() const;
  // The piece with one slice, filling the given rectangle.
  [[nodiscard]] std::string slice(int top, double x, double y, double width, double height) const;

 private:
  int width_, height_, columns_, slices_;  // voxels; slices per row
  std::string png_;
};

}  // namespace report

#endif
