// Whether two groups vary alike, which permutations between groups of unequal size ask of them.
#ifndef TAVMAP_INFERENCE_SPREAD_H
#define TAVMAP_INFERENCE_SPREAD_H

#include <cstdint>
#include <optional>
#include <vector>

#include "inference/model.h"

namespace inference {

struct Spread {
  double ratio = 1;  // standard deviation of the rows that the contrast counts more, over that of the others
  double p = 1;      // of its logarithm, by permutations of the rows
  [[nodiscard]] bool isDoubtful() const { return p <= 0.02 && (ratio > 1.3 || ratio < 1 / 1.3); }
};

// Compares variances about each group's own mean, the logarithm of their ratio averaged over the places of
// completeSample(), with those of permuted rows within blocks, whole rows of residuals of the model, so that
// places keep what they share. None unless the contrast parts the rows in two groups of two rows or more.
// blocks: per row; empty: one. Random numbers follow from the seed alone. (A test of means by permutation is
// one of equal distributions: Romano 1990, Journal of the American Statistical Association 85, 686-692,
// doi:10.1080/01621459.1990.10474928.)
[[nodiscard]] std::optional<Spread> checkSpread(const Model& model, const Values& values,
                                                const std::vector<int>& blocks, std::uint32_t seed);

}  // namespace inference

#endif
