#include "render/slice_choice.h"

#include <algorithm>
#include <cstddef>

namespace render {
namespace {

bool holdsAnatomy(const Upright& view, const std::vector<float>& anatomy, int top) {
  for (int front = 0; front < view.dim(1); ++front) {
    for (int right = 0; right < view.dim(0); ++right) {
      if (anatomy[view.storedIndex(right, front, top)] > 0) return true;
    }
  }
  return false;
}

}  // namespace

std::vector<int> chooseSlices(const Upright& view, const std::vector<float>& anatomy, int count) {
  int first = 0, last = view.dim(2) - 1;
  while (first < last && !holdsAnatomy(view, anatomy, first)) ++first;
  while (last > first && !holdsAnatomy(view, anatomy, last)) --last;
  if (first == last && !holdsAnatomy(view, anatomy, first)) {
    first = 0;
    last = view.dim(2) - 1;
  }
  const int available = last - first + 1;
  const int shown = std::min(count, available);
  std::vector<int> slices;
  for (int n = 0; n < shown; ++n) slices.push_back(first + (2 * n + 1) * available / (2 * shown));
  return slices;
}

}  // namespace render
