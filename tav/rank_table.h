// Where numbers stand among many others, in about the time of three reads from memory.
#ifndef TAVMAP_TAV_RANK_TABLE_H
#define TAVMAP_TAV_RANK_TABLE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tav {

// The range of the numbers is cut into cells of one width, and each cell into finer ones, about two for each
// number in it: few steps are left wherever the numbers crowd. Memory: about 16 bytes per number.
class RankTable {
 public:
  // Fewer than 2^31 numbers, ascending.
  explicit RankTable(std::vector<std::uint32_t> ascending);

  [[nodiscard]] std::size_t size() const { return size_; }
  // How many of the numbers are at most `value`.
  [[nodiscard]] std::size_t countUpTo(std::uint32_t value) const {
    if (size_ == 0 || value < numbers_.front()) return 0;
    if (value >= numbers_[size_ - 1]) return size_;
    const std::uint32_t distance = value - numbers_.front();
    const Cell cell = cells_[distance >> cellShift_];
    const std::size_t first = firsts_[cell.offset + ((distance & cellMask_) >> cell.shift)];
    // Two comparisons without a branch, which nothing could foresee, are nearly always enough.
    const std::uint32_t* const at = numbers_.data() + first;
    const std::size_t few =
        static_cast<std::size_t>(at[0] <= value) + static_cast<std::size_t>(at[1] <= value);
    return few < 2 ? first + few : searched(value, first + few);
  }
  // How many of the numbers are below `value`.
  [[nodiscard]] std::size_t countBelow(std::uint32_t value) const {
    return value == 0 ? 0 : countUpTo(value - 1);
  }

 private:
  struct Cell {
    std::uint32_t offset = 0;  // of its first fine cell
    std::uint32_t shift = 0;   // from a distance within the cell to the fine cell
  };
  void divide(std::size_t cell, std::size_t first, std::size_t end);
  [[nodiscard]] std::size_t searched(std::uint32_t value, std::size_t first) const;

  std::size_t size_;
  std::vector<std::uint32_t> numbers_;  // ascending, and two of the largest behind them
  std::vector<Cell> cells_;
  std::vector<std::uint32_t> firsts_;  // per fine cell: index of the first number in it or behind it
  unsigned cellShift_ = 0;
  std::uint32_t cellMask_ = 0;
};

}  // namespace tav

#endif
