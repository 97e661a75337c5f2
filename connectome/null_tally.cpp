#include "connectome/null_tally.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace connectome {
namespace {

// Of the bits of a float that is not negative: ten of its 23 fraction digits.
constexpr unsigned kDropped = 13;
constexpr std::size_t kBins = std::size_t{1} << (31U - kDropped);

enum Kind : std::size_t { kToOthers, kFromOthers, kAtOnce, kDifference };

std::array<float, 4> valuesOf(const NullTally::DrawnShares& shares, std::size_t at) {
  const float to = shares.toOthers[at], from = shares.fromOthers[at];
  return {to, from, shares.instantaneous[at], std::abs(netShare(to, from))};
}

// Which end of a pair is replaced in the first half: chequered, so that each node is so in half of its pairs.
std::size_t halfOf(std::size_t replaced, std::size_t other) {
  const bool isEven = (replaced + other) % 2 == 0;
  return (replaced < other) == isEven ? 0 : 1;
}

}  // namespace

MagnitudeCounts::MagnitudeCounts() : bins_(kBins, 0) {}

std::size_t MagnitudeCounts::binOf(float magnitude) {
  return magnitude > 0 ? std::bit_cast<std::uint32_t>(magnitude) >> kDropped : 0;
}

MagnitudeCounts& MagnitudeCounts::operator+=(const MagnitudeCounts& other) {
  for (std::size_t i = 0; i < kBins; ++i) bins_[i] += other.bins_[i];
  return *this;
}

void MagnitudeCounts::close() {
  for (std::size_t i = kBins - 1; i-- > 0;) bins_[i] += bins_[i + 1];
}

NullTally::NullTally(std::size_t nodes, std::size_t draws)
    : nodes_(nodes), draws_(draws), sums_(kKinds * nodes), others_(nodes) {
  for (auto& maxima : maxima_) maxima.assign(2 * draws, 0.0F);
  means_.fill(EdgeMatrix(nodes));
}

void NullTally::takeMeans(std::size_t node, const DrawnShares& shares, const std::vector<char>& isDefined) {
  std::vector<double> sums(kKinds * nodes_, 0.0), used(nodes_, 0.0);
  for (std::size_t draw = 0; draw < draws_; ++draw) {
    for (std::size_t other = 0; other < nodes_; ++other) {
      const auto values = valuesOf(shares, draw * shares.stride + other);
      if (std::isnan(values[kDifference]) || std::isnan(values[kAtOnce])) continue;
      used[other] += 1;
      for (std::size_t kind = 0; kind < kKinds; ++kind)
        sums[kind * nodes_ + other] += static_cast<double>(values[kind]);
    }
  }
  std::fill(sums_.begin(), sums_.end(), 0.0F);
  for (std::size_t other = 0; other < nodes_; ++other) {
    if (other == node || isDefined[other] == 0 || used[other] < 2) continue;
    for (std::size_t kind = 0; kind < kKinds; ++kind) {
      const double sum = sums[kind * nodes_ + other];
      means_[kind].at(node, other) = sum / used[other];
      sums_[kind * nodes_ + other] = static_cast<float>(sum);
    }
    others_[other] = static_cast<float>(used[other] - 1);
  }
}

void NullTally::count(std::size_t kind, float value, std::size_t half, std::size_t draw) {
  constexpr std::array<Measure, kKinds> kOf = {Measure::kInfluence, Measure::kInfluence,
                                               Measure::kInstantaneous, Measure::kNet};
  const std::size_t measure = index(kOf[kind]);
  counts_[measure].add(value);
  float& largest = maxima_[measure][half * draws_ + draw];
  largest = std::max(largest, value);
}

void NullTally::takeValues(std::size_t node, const DrawnShares& shares) {
  for (std::size_t draw = 0; draw < draws_; ++draw) {
    for (std::size_t other = 0; other < nodes_; ++other) {
      const auto values = valuesOf(shares, draw * shares.stride + other);
      for (std::size_t kind = 0; kind < kKinds; ++kind) {
        const float rest = sums_[kind * nodes_ + other] - values[kind];  // of the other draws
        if (rest > 0) count(kind, values[kind] * others_[other] / rest, halfOf(node, other), draw);
      }
    }
  }
}

void NullTally::add(std::size_t node, const DrawnShares& shares, const std::vector<char>& isDefined) {
  takeMeans(node, shares, isDefined);
  takeValues(node, shares);
}

NullTally& NullTally::operator+=(const NullTally& other) {
  for (std::size_t measure = 0; measure < kMeasures.size(); ++measure) {
    counts_[measure] += other.counts_[measure];
    for (std::size_t i = 0; i < maxima_[measure].size(); ++i)
      maxima_[measure][i] = std::max(maxima_[measure][i], other.maxima_[measure][i]);
  }
  for (std::size_t kind = 0; kind < kKinds; ++kind)  // each row comes from one of the two
    for (std::size_t i = 0; i < means_[kind].values.size(); ++i)
      if (std::isnan(means_[kind].values[i])) means_[kind].values[i] = other.means_[kind].values[i];
  return *this;
}

double NullTally::scale(Measure measure, std::size_t row, std::size_t column) const {
  const auto ofBoth = [&](Kind ofRow, Kind ofColumn) {
    return (means_[ofRow].at(row, column) + means_[ofColumn].at(column, row)) / 2;
  };
  if (measure == Measure::kInfluence) return ofBoth(kToOthers, kFromOthers);
  return measure == Measure::kNet ? ofBoth(kDifference, kDifference) : ofBoth(kAtOnce, kAtOnce);
}

}  // namespace connectome
