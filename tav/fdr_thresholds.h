// Thresholds that control the false discovery rate, from an observed map and maps computed with
// surrogate references. Two-sided: magnitudes are compared. Values that are exactly 0 (background,
// skipped voxels) are left out. A value that is not a number counts and orders below every number.
#ifndef TAVMAP_TAV_FDR_THRESHOLDS_H
#define TAVMAP_TAV_FDR_THRESHOLDS_H

#include <cstddef>
#include <ostream>
#include <span>
#include <vector>

#include "simo/smatrix.h"
#include "tav/run_observer.h"
#include "tav/run_options.h"

namespace tav {

// Appends the magnitude of every non-zero value; -1 stands for a value that is not a number.
void appendMagnitudes(std::span<const float> values, std::vector<float>& magnitudes);

// The constant c below, for m observed magnitudes.
[[nodiscard]] double dependenceConstant(int cvConstant, std::size_t m);

// One result per q, by ascending q. Both lists are magnitudes as above; they are sorted in place.
// cvConstant 1: c = 1 (independence or positive dependence); 2: c = ln m + 0.5772, m being the
// number of observed magnitudes (any dependence; Benjamini & Yekutieli 2001).
//
// kWalk: from the largest observed magnitude down, rank r = 1, 2, ..., with p the share of null
// magnitudes above the candidate; the threshold for q is the last candidate before p first exceeds
// (r/m)(q/c). A walk settled at its first candidate leaves that candidate as threshold although
// nothing passes; one that reaches the end leaves 0. A candidate that is not a number counts as 0.
// When every null magnitude exceeds a candidate the count is one short, deliberately. No null
// magnitudes at all: 0, and nothing passes.
//
// kStepUp: the smallest observed magnitude t with p = (1 + number of null magnitudes >= t)/(M + 1)
// <= (r/m)(q/c), r being the number of observed magnitudes >= t (Benjamini & Hochberg 1995; Phipson
// & Smyth 2010). None: the threshold is +infinity, so that nothing passes.
//
// Cost: two sorts and one pass over both lists.
[[nodiscard]] std::vector<MapThreshold> searchThresholds(ThresholdRule rule, std::vector<float> qs,
                                                         std::vector<float>& observed,
                                                         std::vector<float>& null, int cvConstant);

// Writes a message for any constant but 1 and 2, which searchThresholds takes as 1.
void checkCvConstant(int cvConst, std::ostream& err);

// The walk over two whole maps of equal extents. `thresholds` has one entry per q; entry k becomes
// the threshold of the k-th smallest q. False when the observed map has no elements. A cvConst
// other than 1 and 2 leaves a message and counts as 1.
[[nodiscard]] bool bstrTwoSideFDR(std::vector<float> qs, const Array3D<float>& observed,
                                  const Array3D<float>& null, int cvConst, std::vector<float>& thresholds,
                                  std::ostream& err);

}  // namespace tav

#endif
