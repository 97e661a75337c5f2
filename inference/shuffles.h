// The shuffles of rows that a test compares the data with.
#ifndef TAVMAP_INFERENCE_SHUFFLES_H
#define TAVMAP_INFERENCE_SHUFFLES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "inference/model.h"
#include "inference/test_options.h"

namespace inference {

// Row i of the shuffled residuals is sign[i] times row from[i].
struct Shuffle {
  std::vector<int> from;
  std::vector<int> sign;
};

// Shuffle 0 changes nothing. Sign flips turn rows, or whole blocks when there are any; permutations exchange
// rows within blocks. When all that differ are no more than `asked`, they are listed, each once (permutations
// among rows of equal design differ in nothing); else `asked` are drawn beside shuffle 0, each from the seed
// and its own index.
class Shuffles {
 public:
  // Throws std::invalid_argument when sizes differ, `asked` is below 1, or no shuffle changes anything.
  Shuffles(const Model& model, Exchange exchange, const std::vector<int>& blocks, int asked,
           std::uint32_t seed);

  [[nodiscard]] std::size_t count() const { return count_; }  // shuffle 0 among them
  [[nodiscard]] bool isExhaustive() const { return isExhaustive_; }
  [[nodiscard]] Shuffle at(std::size_t index) const;

 private:
  // Each row a unit of its own, or all together.
  static std::vector<int> allUnits(std::size_t rows, bool isEachAlone);
  void listArrangements(std::size_t number);
  [[nodiscard]] Shuffle flips(std::size_t index) const;
  [[nodiscard]] Shuffle permutation(std::size_t index) const;
  [[nodiscard]] Shuffle arrangement(std::size_t index) const;

  std::size_t rows_;
  Exchange exchange_;
  std::uint32_t seed_;
  std::vector<int> unitOf_;  // per row, from 0: what is turned at once
  int units_ = 0;
  std::vector<std::vector<int>> blocks_;        // rows of each
  std::vector<int> classOf_;                    // per row, from 0: of its design and block
  std::vector<std::vector<int>> arrangements_;  // per shuffle and row: the class whose place it takes
  std::size_t count_ = 0;
  bool isExhaustive_ = false;
};

}  // namespace inference

#endif
