// Where numbers stand among many others, and how many of them stand where.
#ifndef TAVMAP_TAV_RANK_TABLE_H
#define TAVMAP_TAV_RANK_TABLE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tav {

// The range of the numbers is cut into cells of one width, and each cell into finer ones, about two for each
// number in it: few steps are left wherever the numbers crowd. Memory: about 16 bytes per number.
class RankTable {
 public:
  // Fewer than 2^31 numbers, ascending.
  explicit RankTable(const std::vector<std::uint32_t>& ascending);

  [[nodiscard]] std::size_t size() const { return size_; }
  // How many of the numbers are at most `value`.
  [[nodiscard]] std::size_t countUpTo(std::uint32_t value) const;
  // How many of the numbers are below `value`.
  [[nodiscard]] std::size_t countBelow(std::uint32_t value) const {
    return value == 0 ? 0 : countUpTo(value - 1);
  }

  // Notes of each value how many numbers are at most it. Where these stand in memory is found for many values
  // at a time: one by one, each would wait for it.
  void tally(std::span<const std::uint32_t> values);
  // Tallied values for which that was `rank`, from 0 to size().
  [[nodiscard]] std::uint32_t tallied(std::size_t rank) const {
    return rank == 0 ? talliedBelowAll_ : entries_[rank - 1].tallied;
  }

 private:
  struct Cell {
    std::uint32_t offset = 0;  // of its first fine cell
    std::uint32_t shift = 0;   // from a distance within the cell to the fine cell
  };
  // A number, and values that reach it but not the next one.
  struct Entry {
    std::uint32_t number;
    std::uint32_t tallied = 0;
  };
  void divide(std::size_t cell, std::size_t first, std::size_t end);
  void tallyBatch(std::span<const std::uint32_t> values);
  [[nodiscard]] std::size_t fineCellOf(std::uint32_t value) const;
  [[nodiscard]] std::size_t searched(std::uint32_t value, std::size_t first) const;

  std::size_t size_;
  std::uint32_t least_ = 0, most_ = 0;
  std::vector<Entry> entries_;  // ascending, and two of the largest number behind them
  std::vector<Cell> cells_;
  std::vector<std::uint32_t> firsts_;  // per fine cell: index of the first number in it or behind it
  unsigned cellShift_ = 0;
  std::uint32_t cellMask_ = 0;
  std::uint32_t talliedBelowAll_ = 0;
};

}  // namespace tav

#endif
