// A model taken apart into the direction that a contrast asks for and the rest.
#ifndef TAVMAP_INFERENCE_CONTRAST_SPLIT_H
#define TAVMAP_INFERENCE_CONTRAST_SPLIT_H

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "inference/model.h"

namespace inference {

// With e the values without the nuisances' part: the contrast's estimate is scale * effect'e, its t is
// a sqrt(freedom / (e'e - a a)), a = effect'e (Beckmann's partition: Winkler et al. 2014, appendix A).
// Vectors are over all rows and 0 at those that the split leaves out.
struct ContrastSplit {
  std::vector<int> rows;                       // ascending, those that count
  std::vector<double> effect;                  // of unit length, orthogonal to the nuisances
  std::vector<std::vector<double>> nuisances;  // orthonormal
  // So many of them, the first, differ between shuffles; the others are constant within blocks, which
  // permutations leave as they are.
  std::size_t moving = 0;
  double scale = 0;
  int freedom = 0;
};

// Of some rows, ascending. `fixedBlocks`: per row of the model, the block within which it is permuted, or
// empty when shuffles change everything (sign flips). Nothing when these rows do not tell the contrast or
// leave no degree of freedom; columns that they cannot tell apart otherwise do no harm.
[[nodiscard]] std::optional<ContrastSplit> splitContrast(const Model& model, std::span<const int> rows,
                                                         std::span<const int> fixedBlocks);

// Rows 0 ... rows - 1.
[[nodiscard]] std::vector<int> allRows(std::size_t rows);

}  // namespace inference

#endif
