#include "tav/rank_table.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

namespace tav {
namespace {

constexpr int kCellBits = 11;  // the cells stay in the nearest cache

}  // namespace

RankTable::RankTable(std::vector<std::uint32_t> ascending)
    : size_(ascending.size()), numbers_(std::move(ascending)) {
  if (size_ == 0) return;
  const std::uint32_t least = numbers_.front(), range = numbers_.back() - least;
  cellShift_ = static_cast<unsigned>(std::max(0, static_cast<int>(std::bit_width(range)) - kCellBits));
  cellMask_ = (std::uint32_t{1} << cellShift_) - 1;
  cells_.resize((range >> cellShift_) + 1);
  for (std::size_t cell = 0, first = 0, end = 0; cell < cells_.size(); ++cell, first = end) {
    while (end < size_ && (numbers_[end] - least) >> cellShift_ == cell) ++end;
    divide(cell, first, end);
  }
  numbers_.insert(numbers_.end(), 2, std::numeric_limits<std::uint32_t>::max());
}

// first ... end - 1: the numbers of the cell.
void RankTable::divide(std::size_t cell, std::size_t first, std::size_t end) {
  const int bits =
      std::min(static_cast<int>(std::bit_width(2 * (end - first))), static_cast<int>(cellShift_));
  const unsigned shift = cellShift_ - static_cast<unsigned>(bits);
  cells_[cell] = {static_cast<std::uint32_t>(firsts_.size()), shift};
  for (std::uint32_t fine = 0; fine < std::uint32_t{1} << bits; ++fine) {
    while (first < end && ((numbers_[first] - numbers_.front()) & cellMask_) >> shift < fine) ++first;
    firsts_.push_back(static_cast<std::uint32_t>(first));
  }
}

// first: a number that is at most `value`, or behind such a one.
std::size_t RankTable::searched(std::uint32_t value, std::size_t first) const {
  std::size_t step = 1;
  while (first + step < size_ && numbers_[first + step] <= value) step *= 2;
  const auto begin = numbers_.begin();
  const auto end = begin + static_cast<std::ptrdiff_t>(std::min(first + step, size_));
  return static_cast<std::size_t>(std::upper_bound(begin + static_cast<std::ptrdiff_t>(first), end, value) -
                                  begin);
}

}  // namespace tav
