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

  // The sheet as an SVG image element, and its slices as symbols, to stand once on a page (or in a file),
  // before use.
  [[nodiscard]] std::string definition() const;
  // A picture that uses it, complete in itself. id: of the picture; alone it needs no name that tells it from
  // others.
  [[nodiscard]] std::string standalone(std::string svg, const std::string& id) const;
  // The piece with one slice, filling the given rectangle.
  [[nodiscard]] static std::string slice(int top, double x, double y, double width, double height);

 private:
  // The corner of a slice on the sheet. Black lines part the slices, so that none shines into another where
  // viewers smooth.
  [[nodiscard]] int xOf(int top) const { return (top % columns_) * (width_ + kGap); }
  [[nodiscard]] int yOf(int top) const { return (top / columns_) * (height_ + kGap); }

  static constexpr int kGap = 2;
  int width_, height_, columns_, slices_;  // voxels; slices per row
  int sheetWidth_, sheetHeight_;
  std::string png_;
};

}  // namespace report

#endif
