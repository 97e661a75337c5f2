#include "inference/enhancer.h"

#include <algorithm>
#include <cmath>

namespace inference {

namespace {

constexpr double kHighest =
    40;  // no Z is above (t_distribution.h); a pseudo-t beyond it gains nothing by steps

}  // namespace

Enhancer::Enhancer(const Space& space, const Enhancement& enhancement)
    : enhancement_(enhancement), tree_(space), heights_(space.places), values_(space.places) {
  for (std::size_t extent = 0; extent <= space.places; ++extent)
    extents_.push_back(static_cast<float>(std::pow(static_cast<double>(extent), enhancement.extentPower)));
  double sum = 0;
  for (int k = 0; enhancement.step > 0 && k * enhancement.step <= kHighest; ++k)
    sums_.push_back(
        static_cast<float>(sum += k == 0 ? 0 : std::pow(k * enhancement.step, enhancement.heightPower)));
}

float Enhancer::upTo(float height) const {
  if (!sums_.empty()) {
    const auto steps = static_cast<std::size_t>(height / static_cast<float>(enhancement_.step));
    return sums_[std::min(steps, sums_.size() - 1)];
  }
  if (enhancement_.heightPower == 2) return height * height * height / 3;
  const auto power = static_cast<float>(enhancement_.heightPower + 1);
  return std::pow(height, power) / power;
}

// From the lowest node up: a node has what its parent has, and what its own component adds between both
// heights.
void Enhancer::enhanceSide(std::span<const float> z, int sign) {
  order_ = sorter_.of(z, sign);
  tree_.grow(order_);
  for (std::size_t node = 0; node < order_.size(); ++node) heights_[node] = upTo(valueOf(order_[node]));
  for (std::size_t node = order_.size(); node-- > 0;) {
    const std::int32_t parent = tree_.parent(node);
    const auto below = static_cast<std::size_t>(std::max(parent, 0));
    const float begin = parent < 0 ? 0 : heights_[below], base = parent < 0 ? 0 : values_[below];
    values_[node] = base + ofExtent(tree_.extent(node)) * (heights_[node] - begin);
  }
}

std::vector<float> Enhancer::enhance(std::span<const float> z, bool isTwoSided) {
  std::vector<float> map(z.size(), 0.0F);
  for (int sign = 1; sign >= (isTwoSided ? -1 : 1); sign -= 2) {
    enhanceSide(z, sign);
    for (std::size_t node = 0; node < order_.size(); ++node)
      map[static_cast<std::size_t>(order_[node].place)] = static_cast<float>(sign) * values_[node];
  }
  return map;
}

float Enhancer::largest(std::span<const float> z, bool isTwoSided) {
  float most = 0;
  for (int sign = 1; sign >= (isTwoSided ? -1 : 1); sign -= 2) {
    enhanceSide(z, sign);
    for (std::size_t node = 0; node < order_.size(); ++node) most = std::max(most, values_[node]);
  }
  return most;
}

}  // namespace inference
