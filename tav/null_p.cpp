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
    if (ascending_.empty()) return;
    const std::uint32_t range = ascending_.back() - ascending_.front();
    shift_ = static_cast<unsigned>(std::max(0, static_cast<int>(std::bit_width(range)) - kGroupBits));
    firstOf_.resize((range >> shift_) + 2);
    std::size_t at = 0;
    for (std::size_t group = 0; group < firstOf_.size(); ++group) {
      while (at < ascending_.size() && groupOf(ascending_[at]) < group) ++at;
      firstOf_[group] = static_cast<std::uint32_t>(at);
    }
  }

  void add(std::uint32_t null) {
    ++reached_[reachedBy(null)];
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
  // Observed numbers that are close to each other: the search is among few.
  static constexpr int kGroupBits = 17;
  [[nodiscard]] std::size_t groupOf(std::uint32_t order) const {
    return (order - ascending_.front()) >> shift_;
  }

  // How many observed numbers a null one reaches.
  [[nodiscard]] std::size_t reachedBy(std::uint32_t null) const {
    if (ascending_.empty() || null < ascending_.front()) return 0;
    if (null >= ascending_.back()) return ascending_.size();
    const std::size_t group = groupOf(null);
    const std::uint32_t* const first = ascending_.data() + firstOf_[group];
    return static_cast<std::size_t>(std::upper_bound(first, ascending_.data() + firstOf_[group + 1], null) -
                                    ascending_.data());
  }

  std::vector<std::uint32_t> ascending_;
  std::vector<std::uint32_t> firstOf_;  // index of a group's first observed number
  std::vector<std::size_t> reached_;    // null values that reach this many observed ones
  std::size_t count_ = 0;
  unsigned shift_ = 0;
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
