// p of values by the null of their maxima.
#ifndef TAVMAP_INFERENCE_MAXIMA_P_H
#define TAVMAP_INFERENCE_MAXIMA_P_H

#include <vector>

#include "inference/test_result.h"

namespace inference {

// The null of `maxima` over the shuffles and `own`, that of the data as they are.
[[nodiscard]] NullMaxima nullOfMaxima(std::vector<float> maxima, float own);

// The share of maxima that reach the value, rounding forgiven.
[[nodiscard]] double pByMaxima(const NullMaxima& null, double value);

// The smallest value whose share is at most `level`; infinite when one maximum is more than that.
[[nodiscard]] double valueAtLevel(const NullMaxima& null, double level);

}  // namespace inference

#endif
