#include "tav/null_p.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "tav/radix_sort.h"
#include "tav/rank_table.h"

namespace tav {
namespace {

bool isValue(float value) {
  return std::isfinite(value) && value != 0.0F;
}

// Numbers that order as magnitudes do.
std::uint32_t orderOf(float value) {
  return std::bit_cast<std::uint32_t>(std::fabs(value));
}

std::vector<std::uint32_t> ordersOf(const MapSource& map) {
  std::vector<std::uint32_t> orders;
  orders.reserve(map.size());
  map.forEachPiece([&, scale = map.scale()](MapSource::Piece piece) {
    for (const float value : piece)
      if (isValue(value)) orders.push_back(orderOf(value * scale));
  });
  return orders;
}

// Each once: small values of single precision are few.
std::vector<std::uint32_t> distinctOrdersOf(const MapSource& map) {
  std::vector<std::uint32_t> orders = ordersOf(map);
  radixSort(orders, [](std::uint32_t order) { return order; });
  orders.erase(std::unique(orders.begin(), orders.end()), orders.end());
  return orders;
}

constexpr std::size_t kValuesAtOnce = 4096;  // they stay in the nearest cache

// Those of the piece, in place of what `orders` had. Without a branch on values.
void keepOrders(MapSource::Piece piece, float scale, std::vector<std::uint32_t>& orders) {
  orders.resize(piece.size());
  std::size_t kept = 0;
  for (const float value : piece) {
    orders[kept] = orderOf(value * scale);
    kept += isValue(value) ? 1U : 0U;
  }
  orders.resize(kept);
}

// Counts how many null values reach each of the observed ones.
class ReachCounts {
 public:
  explicit ReachCounts(const MapSource& observed) : observed_(distinctOrdersOf(observed)) {}

  void add(const MapSource& null) {
    std::vector<std::uint32_t> orders;
    null.forEachPiece([&, scale = null.scale()](MapSource::Piece piece) {
      for (; !piece.empty(); piece = piece.subspan(std::min(piece.size(), kValuesAtOnce))) {
        keepOrders(piece.first(std::min(piece.size(), kValuesAtOnce)), scale, orders);
        observed_.tally(orders);
        nrOfNulls_ += orders.size();
      }
    });
  }

  // p of every magnitude that was observed, in ascending order.
  [[nodiscard]] std::vector<float> pValues() const {
    std::vector<float> p(observed_.size());
    std::size_t reaching = 0;
    for (std::size_t i = observed_.size(); i-- > 0;) {
      reaching += observed_.tallied(i + 1);
      p[i] = static_cast<float>(static_cast<double>(1 + reaching) / static_cast<double>(1 + nrOfNulls_));
    }
    return p;
  }

  [[nodiscard]] std::size_t rankOf(std::uint32_t observed) const { return observed_.countBelow(observed); }

 private:
  RankTable observed_;
  std::size_t nrOfNulls_ = 0;
};

}  // namespace

std::vector<float> nullPValues(const MapSource& observed, const MapSource& null) {
  ReachCounts counts(observed);
  counts.add(null);
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
