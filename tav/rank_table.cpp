#include "tav/rank_table.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace tav {
namespace {

constexpr int kCellBits = 11;  // the cells stay in the nearest cache
constexpr std::size_t kBatch = 256;

void comeNear([[maybe_unused]] const void* address) {
#ifdef __GNUC__
  __builtin_prefetch(address);
#endif
}

}  // namespace

RankTable::RankTable(const std::vector<std::uint32_t>& ascending) : size_(ascending.size()) {
  if (size_ == 0) return;
  entries_.reserve(size_ + 2);
  for (const std::uint32_t number : ascending) entries_.push_back({number});
  least_ = ascending.front();
  most_ = ascending.back();
  const std::uint32_t range = most_ - least_;
  cellShift_ = static_cast<unsigned>(std::max(0, static_cast<int>(std::bit_width(range)) - kCellBits));
  cellMask_ = (std::uint32_t{1} << cellShift_) - 1;
  cells_.resize((range >> cellShift_) + 1);
  for (std::size_t cell = 0, first = 0, end = 0; cell < cells_.size(); ++cell, first = end) {
    while (end < size_ && (ascending[end] - least_) >> cellShift_ == cell) ++end;
    divide(cell, first, end);
  }
  entries_.insert(entries_.end(), 2, {std::numeric_limits<std::uint32_t>::max()});
}

// first ... end - 1: the numbers of the cell.
void RankTable::divide(std::size_t cell, std::size_t first, std::size_t end) {
  const int bits =
      std::min(static_cast<int>(std::bit_width(2 * (end - first))), static_cast<int>(cellShift_));
  const unsigned shift = cellShift_ - static_cast<unsigned>(bits);
  cells_[cell] = {static_cast<std::uint32_t>(firsts_.size()), shift};
  for (std::uint32_t fine = 0; fine < std::uint32_t{1} << bits; ++fine) {
    while (first < end && ((entries_[first].number - least_) & cellMask_) >> shift < fine) ++first;
    firsts_.push_back(static_cast<std::uint32_t>(first));
  }
}

// value: from the least to the largest number.
std::size_t RankTable::fineCellOf(std::uint32_t value) const {
  const std::uint32_t distance = value - least_;
  const Cell cell = cells_[distance >> cellShift_];
  return cell.offset + ((distance & cellMask_) >> cell.shift);
}

// first: a number that is at most `value`, or behind such a one.
std::size_t RankTable::searched(std::uint32_t value, std::size_t first) const {
  std::size_t step = 1;
  while (first + step < size_ && entries_[first + step].number <= value) step *= 2;
  const auto begin = entries_.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = entries_.begin() + static_cast<std::ptrdiff_t>(std::min(first + step, size_));
  const auto isBelow = [](std::uint32_t asked, const Entry& entry) { return asked < entry.number; };
  return static_cast<std::size_t>(std::upper_bound(begin, end, value, isBelow) - entries_.begin());
}

std::size_t RankTable::countUpTo(std::uint32_t value) const {
  if (size_ == 0 || value < least_) return 0;
  if (value >= most_) return size_;
  const std::size_t first = firsts_[fineCellOf(value)];
  return entries_[first].number > value ? first : searched(value, first);
}

void RankTable::tally(std::span<const std::uint32_t> values) {
  if (size_ == 0) {
    talliedBelowAll_ += static_cast<std::uint32_t>(values.size());
    return;
  }
  for (; values.size() > kBatch; values = values.subspan(kBatch)) tallyBatch(values.first(kBatch));
  tallyBatch(values);
}

// At most kBatch values. No branch depends on a value, since nothing could foresee it: values that two
// comparisons do not settle, which are rare, are put by for the end.
void RankTable::tallyBatch(std::span<const std::uint32_t> values) {
  std::array<std::size_t, kBatch> firsts, unsettled;
  std::size_t nrUnsettled = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    firsts[i] = fineCellOf(std::clamp(values[i], least_, most_));
    comeNear(&firsts_[firsts[i]]);
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    firsts[i] = firsts_[firsts[i]];
    comeNear(&entries_[firsts[i]]);
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Entry* const at = &entries_[firsts[i]];
    const std::size_t rank = firsts[i] + static_cast<std::size_t>(at[0].number <= values[i]) +
                             static_cast<std::size_t>(at[1].number <= values[i]);
    unsettled[nrUnsettled] = i;
    const bool isSettled = rank < firsts[i] + 2;
    nrUnsettled += isSettled ? 0U : 1U;
    std::uint32_t& count = rank == 0 ? talliedBelowAll_ : entries_[rank - 1].tallied;
    count += isSettled ? 1U : 0U;
  }
  for (std::size_t i = 0; i < nrUnsettled; ++i) {
    const std::size_t first = firsts[unsettled[i]];
    ++entries_[searched(values[unsettled[i]], first) - 1].tallied;
  }
}

}  // namespace tav
