#include "tav/search_curve.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tav {
namespace {

constexpr std::size_t kFewestSpread = kMostSearchPoints / 2;

struct Magnitudes {
  std::size_t nonZero = 0;     // numbers or not
  std::vector<float> numbers;  // in descending order
};

template <typename Use>
void forEachMagnitude(const MapSource& map, Use use) {
  map.forEachPiece([&, scale = map.scale()](MapSource::Piece piece) {
    for (const float value : piece) {
      const float magnitude = std::fabs(value * scale);
      if (magnitude != 0.0F) use(magnitude);
    }
  });
}

Magnitudes magnitudesOf(const MapSource& map) {
  Magnitudes found;
  forEachMagnitude(map, [&found](float magnitude) {
    ++found.nonZero;
    if (!std::isnan(magnitude)) found.numbers.push_back(magnitude);
  });
  std::sort(found.numbers.begin(), found.numbers.end(), std::greater<>());
  return found;
}

std::vector<std::size_t> spreadRanks(std::size_t last, const std::vector<std::size_t>& alsoAt) {
  std::vector<std::size_t> ranks;
  for (const std::size_t rank : alsoAt)
    if (rank >= 1 && rank <= last) ranks.push_back(rank);
  const std::size_t count =
      std::max(kMostSearchPoints - std::min(ranks.size(), kMostSearchPoints), kFewestSpread);
  const double step = std::log(static_cast<double>(last)) / static_cast<double>(count - 1);
  for (std::size_t i = 0; i < count; ++i) {
    const auto rank = static_cast<std::size_t>(std::lround(std::exp(step * static_cast<double>(i))));
    ranks.push_back(std::min(rank, last));
  }
  std::sort(ranks.begin(), ranks.end());
  ranks.erase(std::unique(ranks.begin(), ranks.end()), ranks.end());
  return ranks;
}

// Their magnitudes descend.
void setP(const MapSource& null, std::vector<SearchPoint>& points) {
  std::vector<std::size_t> firstReached(points.size() + 1);  // null magnitudes by the first point they reach
  std::size_t nulls = 0;
  forEachMagnitude(null, [&](float magnitude) {
    ++nulls;
    if (std::isnan(magnitude)) return;
    const auto first =
        std::partition_point(points.begin(), points.end(),
                             [magnitude](const SearchPoint& point) { return point.magnitude > magnitude; });
    ++firstReached[static_cast<std::size_t>(first - points.begin())];
  });
  std::size_t reaching = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    reaching += firstReached[i];
    points[i].p = static_cast<double>(1 + reaching) / static_cast<double>(nulls + 1);
  }
}

}  // namespace

SearchCurve searchCurve(const MapSource& observed, const MapSource& null,
                        const std::vector<std::size_t>& alsoAt) {
  const Magnitudes magnitudes = magnitudesOf(observed);
  SearchCurve curve{magnitudes.nonZero};
  if (magnitudes.numbers.empty()) return curve;
  for (const std::size_t rank : spreadRanks(magnitudes.numbers.size(), alsoAt))
    curve.points.push_back({rank, magnitudes.numbers[rank - 1], 1});
  setP(null, curve.points);
  return curve;
}

}  // namespace tav
