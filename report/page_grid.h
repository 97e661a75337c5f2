// The grid of a report's maps, seen upright: indices run from the patient's left to the right, from the back
// to the front and from below to above, whatever order the files keep their voxels in.
#ifndef TAVMAP_REPORT_PAGE_GRID_H
#define TAVMAP_REPORT_PAGE_GRID_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "formats/image.h"
#include "render/upright.h"

namespace report {

class PageGrid {
 public:
  explicit PageGrid(const formats::ImageHeader& header);

  [[nodiscard]] const render::Upright& view() const { return view_; }
  [[nodiscard]] const formats::ImageHeader& header() const { return header_; }
  [[nodiscard]] std::size_t voxels() const { return stored_.size(); }
  // The place in the stored order of the voxel that is the n-th upright, `right` fastest.
  [[nodiscard]] std::size_t stored(std::size_t n) const { return stored_[n]; }

  // Values in stored order to upright order. There must be one per voxel.
  template <typename T>
  [[nodiscard]] std::vector<T> upright(const std::vector<T>& values) const {
    std::vector<T> turned;
    turned.reserve(stored_.size());
    for (const std::size_t voxel : stored_) turned.push_back(values[voxel]);
    return turned;
  }

 private:
  formats::ImageHeader header_;
  render::Upright view_;
  std::vector<std::size_t> stored_;
};

// Grey levels 0 ... 255 of an underlay, in its own order: the 99th percentile of its positive values has
// `brightness`, of which 1 is white.
[[nodiscard]] std::vector<std::uint8_t> greyLevels(const std::vector<float>& underlay, double brightness);

}  // namespace report

#endif
