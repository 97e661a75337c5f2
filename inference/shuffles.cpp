#include "inference/shuffles.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <stdexcept>

#include "inference/draws.h"

namespace inference {

namespace {

// Numbers 0, 1, ... by first appearance.
template <typename Key>
std::vector<int> numbered(const std::vector<Key>& keys) {
  std::map<Key, int> numbers;
  std::vector<int> result;
  for (const Key& key : keys)
    result.push_back(numbers.emplace(key, static_cast<int>(numbers.size())).first->second);
  return result;
}

std::vector<std::vector<int>> membersOf(const std::vector<int>& numbers) {
  std::vector<std::vector<int>> members;
  for (std::size_t row = 0; row < numbers.size(); ++row) {
    const auto number = static_cast<std::size_t>(numbers[row]);
    if (members.size() <= number) members.resize(number + 1);
    members[number].push_back(static_cast<int>(row));
  }
  return members;
}

std::vector<int> classesOf(const Model& model, const std::vector<int>& blockOf) {
  std::vector<std::vector<double>> keys;
  const std::size_t columns = model.contrast.size();
  for (std::size_t row = 0; row < model.rows(); ++row) {
    const auto begin = model.design.begin() + static_cast<std::ptrdiff_t>(row * columns);
    keys.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(columns));
    keys.back().push_back(blockOf[row]);
  }
  return numbered(keys);
}

// n! of each block by m! of each class; as a float, since it may be larger than any integer.
double arrangementsOf(const std::vector<std::vector<int>>& blocks, const std::vector<int>& classOf) {
  double logarithm = 0;
  for (const auto& block : blocks) logarithm += std::lgamma(static_cast<double>(block.size()) + 1);
  for (const auto& same : membersOf(classOf)) logarithm -= std::lgamma(static_cast<double>(same.size()) + 1);
  return logarithm > 60 ? 1e18 : std::round(std::exp(logarithm));
}

const char* nothingToShuffle(Exchange exchange) {
  return exchange == Exchange::kSignFlips ? "There is nothing to shuffle: the model has no rows."
                                          : "No permutation changes anything: within each block all rows of "
                                            "the model are alike. Test by sign "
                                            "flips, or take blocks that hold different rows.";
}

}  // namespace

Shuffles::Shuffles(const Model& model, Exchange exchange, const std::vector<int>& blocks, int asked,
                   std::uint32_t seed)
    : rows_(model.rows()), exchange_(exchange), seed_(seed) {
  if (!blocks.empty() && blocks.size() != rows_)
    throw std::invalid_argument(
        fmt::format("There are {} blocks for {} rows; name one per row, or none.", blocks.size(), rows_));
  if (asked < 1) throw std::invalid_argument(fmt::format("{} shuffles are none; ask for at least 1.", asked));
  const bool isFlipped = exchange == Exchange::kSignFlips;
  unitOf_ = blocks.empty() ? allUnits(rows_, isFlipped) : numbered(blocks);
  blocks_ = membersOf(unitOf_);
  units_ = static_cast<int>(blocks_.size());
  classOf_ = classesOf(model, unitOf_);
  const double possible = isFlipped ? std::pow(2.0, units_) : arrangementsOf(blocks_, classOf_);
  if (possible < 2) throw std::invalid_argument(nothingToShuffle(exchange));
  isExhaustive_ = possible <= asked;
  count_ = isExhaustive_ ? static_cast<std::size_t>(possible) : static_cast<std::size_t>(asked) + 1;
  if (isExhaustive_ && !isFlipped) listArrangements(count_);
}

std::vector<int> Shuffles::allUnits(std::size_t rows, bool isEachAlone) {
  std::vector<int> units(rows, 0);
  if (isEachAlone) std::iota(units.begin(), units.end(), 0);
  return units;
}

// The next arrangement of one block after the other, as digits of a counter.
void Shuffles::listArrangements(std::size_t number) {
  std::vector<std::vector<int>> digits;
  for (const auto& block : blocks_) {
    digits.emplace_back();
    for (const int row : block) digits.back().push_back(classOf_[static_cast<std::size_t>(row)]);
    std::sort(digits.back().begin(), digits.back().end());
  }
  for (std::size_t n = 0; n < number; ++n) {
    std::vector<int> whole(rows_);
    for (std::size_t b = 0; b < blocks_.size(); ++b)
      for (std::size_t i = 0; i < blocks_[b].size(); ++i)
        whole[static_cast<std::size_t>(blocks_[b][i])] = digits[b][i];
    arrangements_.push_back(std::move(whole));
    for (auto& digit : digits)
      if (std::next_permutation(digit.begin(), digit.end())) break;
  }
  const auto own = std::find(arrangements_.begin(), arrangements_.end(), classOf_);
  std::iter_swap(arrangements_.begin(), own);
}

Shuffle Shuffles::at(std::size_t index) const {
  if (exchange_ == Exchange::kSignFlips) return flips(index);
  return isExhaustive_ ? arrangement(index) : permutation(index);
}

Shuffle Shuffles::flips(std::size_t index) const {
  Shuffle shuffle{allUnits(rows_, true), std::vector<int>(rows_, 1)};
  if (index == 0) return shuffle;
  Draws draws(seed_, index);
  std::vector<int> signs;
  for (int unit = 0; unit < units_; ++unit)
    signs.push_back((isExhaustive_ ? ((index >> unit) & 1U) != 0 : draws.coin()) ? -1 : 1);
  for (std::size_t row = 0; row < rows_; ++row)
    shuffle.sign[row] = signs[static_cast<std::size_t>(unitOf_[row])];
  return shuffle;
}

Shuffle Shuffles::permutation(std::size_t index) const {
  Shuffle shuffle{allUnits(rows_, true), std::vector<int>(rows_, 1)};
  if (index == 0) return shuffle;
  Draws draws(seed_, index);
  for (const auto& block : blocks_) {
    std::vector<int> order = block;
    draws.shuffle(order);
    for (std::size_t i = 0; i < block.size(); ++i)
      shuffle.from[static_cast<std::size_t>(block[i])] = order[i];
  }
  return shuffle;
}

Shuffle Shuffles::arrangement(std::size_t index) const {
  Shuffle shuffle{allUnits(rows_, true), std::vector<int>(rows_, 1)};
  if (index == 0) return shuffle;
  auto sources = membersOf(arrangements_[index]);
  for (std::size_t row = 0; row < rows_; ++row) {
    auto& own = sources[static_cast<std::size_t>(classOf_[row])];
    shuffle.from[row] = own.back();
    own.pop_back();
  }
  return shuffle;
}

}  // namespace inference
