// The test of a group: which places, clusters and enhanced values stand out from what shuffles give.
#ifndef TAVMAP_INFERENCE_RUN_TEST_H
#define TAVMAP_INFERENCE_RUN_TEST_H

#include "inference/model.h"
#include "inference/space.h"
#include "inference/test_options.h"
#include "inference/test_result.h"

namespace inference {

// Residuals of the model without the contrast are shuffled and fitted anew (Freedman & Lane 1983; Winkler et
// al. 2014, NeuroImage 92, doi:10.1016/j.neuroimage.2014.01.060); without nuisances these are the values
// themselves.
//
// A place is tested when enough rows have a finite value there, the contrast can be estimated from them with
// at least one degree of freedom left, a shuffle can change them, and they vary. Rows without a value are
// left out of a place's model, and permutations take the lack along (shuffle_weights.h).
//
// Throws std::invalid_argument, saying what to do, when the model cannot be tested (checkModel), sizes
// differ, an option is out of its range, no shuffle changes anything, or no place can be tested.
//
// Cost: rows x places x shuffles multiplications; enhancement takes longer than all else. Memory: as the
// values, 8 maps per thread and 10 for the result.
[[nodiscard]] TestResult runTest(const Model& model, const Values& values, const Space& space,
                                 const TestOptions& options);

}  // namespace inference

#endif
