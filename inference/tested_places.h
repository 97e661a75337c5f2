// The places of a test, made ready for shuffles.
#ifndef TAVMAP_INFERENCE_TESTED_PLACES_H
#define TAVMAP_INFERENCE_TESTED_PLACES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "inference/contrast_split.h"
#include "inference/lane_vector.h"
#include "inference/model.h"
#include "inference/test_options.h"

namespace inference {

// Vectors of lanes begin ... end - 1, whose places have values in the same rows.
struct LaneSpan {
  std::size_t begin, end;
  std::size_t split;  // of its places
};

// Tested places have slots, grouped by the rows that have values; a group fills whole vectors of lanes, the
// rest of its last one stays empty. Those with values in all rows come first, in their order.
struct TestedPlaces {
  std::vector<ContrastSplit> splits;
  std::vector<LaneSpan> spans;
  std::vector<std::int32_t> placeOfSlot;  // -1: empty
  LaneFloats residuals;                   // [vector][row][lane], without the nuisances' part, of unit length
  LaneFloats lengths;                     // per slot: the length that they had
  std::vector<double> effect, t;          // per slot
  LaneFloats varianceFactors;             // per slot: squared length by degrees of freedom
  std::vector<int> rowsOfPlace;           // values of each place of all, tested or not

  [[nodiscard]] std::size_t slots() const { return placeOfSlot.size(); }
  [[nodiscard]] std::size_t rows() const { return splits.empty() ? 0 : splits[0].effect.size(); }
};

// The blocks within which rows are permuted, per row; empty for sign flips.
[[nodiscard]] std::vector<int> fixedBlocksOf(const TestOptions& options, std::size_t rows);

// As runTest says which are tested; smallestShare, exchange and blocks count. May find none.
[[nodiscard]] TestedPlaces testedPlaces(const Model& model, const Values& values, const TestOptions& options);

}  // namespace inference

#endif
