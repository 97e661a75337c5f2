#include "tav/null_p.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace tav {
namespace {

bool isValue(float value) {
  return std::isfinite(value) && value != 0.0F;
}

// Numbers that order as magnitudes do.
std::uint32_t orderOf(float value) {
  return std::bit_cast<std::uint32_t>(std::fabs(value));
}

// Counts how many null values reach each of the observed ones.
class ReachCounts {
 public:
  explicit ReachCounts(std::vector<std::uint32_t> observed) : ascending_(std::move(observed)) {
    std::sort(ascending_.begin(), ascending_.end());
    reached_.resize(ascending_.size() + 1);
    firstOf_.resize(kGroups + 1);
    std::size_t at = 0;
    for (std::size_t group = 0; group <= kGroups; ++group) {
      while (at < ascending_.size() && groupOf(ascending_[at]) < group) ++at;
      firstOf_[group] = at;
    }
  }

  void add(std::uint32_t null) {
    const std::size_t group = groupOf(null);
    const auto first = ascending_.begin() + static_cast<std::ptrdiff_t>(firstOf_[group]);
    const auto last = ascending_.begin() + static_cast<std::ptrdiff_t>(firstOf_[group + 1]);
    ++reached_[static_cast<std::size_t>(std::upper_bound(first, last, null) - ascending_.begin())];
    ++count_;
  }

  // When all are added. p of every observed magnitude, in ascending order.
  [[nodiscard]] std::vector<float> pValues() const {
    std::vector<float> p(ascending_.size());
    std::size_t reaching = 0;
    for (std::size_t i = ascending_.size(); i-- > 0;) {
      reaching += reached_[i + 1];
      p[i] = static_cast<float>(static_cast<double>(1 + reaching) / static_cast<double>(1 + count_));
    }
    return p;
  }

  [[nodiscard]] std::size_t rankOf(std::uint32_t observed) const {
    const auto found = std::lower_bound(ascending_.begin(), ascending_.end(), observed);
    return static_cast<std::size_t>(found - ascending_.begin());
  }

 private:
  // Numbers with the same upper half: the search is among few.
  static constexpr std::size_t kGroups = std::size_t{1} << 16U;
  static std::size_t groupOf(std::uint32_t order) { return order >> 16U; }

  std::vector<std::uint32_t> ascending_;
  std::vector<std::size_t> firstOf_;  // index of a group's first observed number
  std::vector<std::size_t> reached_;  // null values that reach this many observed ones
  std::size_t count_ = 0;
};

std::vector<std::uint32_t> ordersOf(const MapSource& map) {
  std::vector<std::uint32_t> orders;
  orders.reserve(map.size());
  map.forEachPiece([&, scale = map.scale()](MapSource::Piece piece) {
    for (const float value : piece)
      if (isValue(value)) orders.push_back(orderOf(value * scale));
  });
  return orders;
}

}  // namespace

std::vector<float> nullPValues(const MapSource& observed, const MapSource& null) {
  ReachCounts counts(ordersOf(observed));
  null.forEachPiece([&, scale = null.scale()](MapSource::Piece piece) {
    for (const float value : piece)
      if (isValue(value)) counts.add(orderOf(value * scale));
  });
  const std::vector<float> byRank = counts.pValues();
  std::vector<float> p;
  p.reserve(observed.size());
  observed.forEachPiece([&, scale = observed.scale()](MapSource::Piece piece) {
    for (const float value : piece) {
      p.push_back(isValue(value) ? byRank[counts.rankOf(orderOf(value * scale))]
                                 : std::numeric_limits<float>::quiet_NaN());
    }
  });
  return p;
}

}  // namespace tav
