#include "report/page_grid.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace report {
namespace {

float whiteOf(const std::vector<float>& underlay) {
  std::vector<float> positive;
  std::copy_if(underlay.begin(), underlay.end(), std::back_inserter(positive),
               [](float value) { return value > 0 && std::isfinite(value); });
  if (positive.empty()) return 1;
  const auto at = positive.begin() + static_cast<std::ptrdiff_t>(positive.size() * 99 / 100);
  std::nth_element(positive.begin(), at, positive.end());
  return *at;
}

}  // namespace

PageGrid::PageGrid(const formats::ImageHeader& header)
    : header_(header), view_(header.size, header.affine.m) {
  stored_.reserve(header.size.voxels());
  for (int top = 0; top < view_.dim(2); ++top)
    for (int front = 0; front < view_.dim(1); ++front)
      for (int right = 0; right < view_.dim(0); ++right)
        stored_.push_back(view_.storedIndex(right, front, top));
}

std::vector<std::uint8_t> greyLevels(const std::vector<float>& underlay, double brightness) {
  const float white = whiteOf(underlay);
  std::vector<std::uint8_t> levels;
  levels.reserve(underlay.size());
  for (const float value : underlay) {
    const double share = std::isfinite(value) ? std::clamp(static_cast<double>(value / white), 0.0, 1.0) : 0;
    levels.push_back(static_cast<std::uint8_t>(std::lround(255 * brightness * share)));
  }
  return levels;
}

}  // namespace report
