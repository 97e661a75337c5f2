#include "results/map_histogram.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace study {
namespace {

constexpr double kShareLeftOut = 0.0005;  // of the null values, at either end

constexpr double kNarrowest = 1e-6;  // range, as a share of its values

struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void include(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
};

// Numbers that order as the values do, and back.
std::uint32_t orderOf(float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  return bits >> 31U == 1 ? ~bits : bits | 1U << 31U;
}
float valueOf(std::uint32_t order) {
  return std::bit_cast<float>(order >> 31U == 1 ? order & ~(1U << 31U) : ~order);
}

// Counts finite values by the upper half of their order, so that millions need no memory.
class CentralRange {
 public:
  void add(float value) {
    if (!std::isfinite(value)) return;
    ++counts_[orderOf(value) >> kHalf];
    ++count_;
    whole_.include(static_cast<double>(value));
  }

  // Without any value, nothing is included.
  void includeIn(Range& range) const {
    if (count_ == 0) return;
    const auto leftOut = static_cast<std::size_t>(kShareLeftOut * static_cast<double>(count_));
    const std::uint32_t first = groupAt(counts_.begin(), leftOut);
    const std::uint32_t last = kGroups - 1 - groupAt(counts_.rbegin(), leftOut);
    range.include(std::max(whole_.low, static_cast<double>(valueOf(first << kHalf))));
    range.include(std::min(whole_.high, static_cast<double>(valueOf((last << kHalf) | (kGroups - 1)))));
  }

 private:
  static constexpr std::uint32_t kHalf = 16, kGroups = 1U << kHalf;

  // How many groups lie before the one that holds a value with `before` others in front of it.
  template <typename Iterator>
  static std::uint32_t groupAt(Iterator counts, std::size_t before) {
    std::uint32_t group = 0;
    for (std::size_t passed = *counts; passed <= before; passed += *++counts) ++group;
    return group;
  }

  std::vector<std::size_t> counts_ = std::vector<std::size_t>(kGroups);
  std::size_t count_ = 0;
  Range whole_;
};

template <typename Use>
void forEachNull(const tav::MapSource& null, Use use) {
  null.forEachPiece([&use, scale = null.scale()](tav::MapSource::Piece piece) {
    for (const float value : piece)
      if (value * scale != 0) use(value * scale);
  });
}

std::vector<float> computedValues(const float* values, const std::vector<std::uint8_t>& codes) {
  std::vector<float> computed;
  for (std::size_t i = 0; i < codes.size(); ++i)
    if (codes[i] == static_cast<std::uint8_t>(StatusCode::kComputed)) computed.push_back(values[i]);
  return computed;
}

std::vector<double> edgesOver(Range range) {
  if (range.low > range.high) range = {0, 1};
  const double size = std::max(std::abs(range.low), std::abs(range.high));
  range.high = std::max(range.high, range.low + (size > 0 ? size * kNarrowest : 1));
  std::vector<double> edges;
  for (std::size_t i = 0; i < kHistogramBins; ++i)
    edges.push_back(range.low + (range.high - range.low) * static_cast<double>(i) / kHistogramBins);
  edges.push_back(range.high);
  return edges;
}

struct Counts {
  std::vector<std::size_t>& inside;
  std::size_t& below;
  std::size_t& above;
};

void count(double value, const std::vector<double>& edges, Counts counts) {
  if (std::isnan(value)) return;
  if (value < edges.front()) {
    ++counts.below;
  } else if (value > edges.back()) {
    ++counts.above;
  } else {
    const auto above = std::upper_bound(edges.begin(), edges.end() - 1, value);
    ++counts.inside[static_cast<std::size_t>(above - edges.begin()) - 1];
  }
}

}  // namespace

MapHistogram mapHistogram(const float* values, const std::vector<std::uint8_t>& codes,
                          const tav::MapSource& null) {
  const std::vector<float> observed = computedValues(values, codes);
  CentralRange central;
  forEachNull(null, [&central](float value) { central.add(value); });
  Range range;
  central.includeIn(range);
  for (const float value : observed)
    if (std::isfinite(value)) range.include(static_cast<double>(value));
  MapHistogram found;
  found.edges = edgesOver(range);
  found.observed.resize(kHistogramBins);
  found.null.resize(kHistogramBins);
  for (const float value : observed)
    count(static_cast<double>(value), found.edges,
          {found.observed, found.observedBelow, found.observedAbove});
  forEachNull(null, [&found](float value) {
    count(static_cast<double>(value), found.edges, {found.null, found.nullBelow, found.nullAbove});
  });
  return found;
}

}  // namespace study
