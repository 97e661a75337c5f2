// p of values by the null of their maxima.
#ifndef TAVMAP_INFERENCE_MAXIMA_P_H
#define TAVMAP_INFERENCE_MAXIMA_P_H

#include <vector>

#include "inference/test_result.h"

namespace inference {

// The null of `maxima`, of the shuffles, and `own`, that of the data as they are. With isTailSmooth the
// shuffles' are given a smooth tail, if they allow one.
[[nodiscard]] NullMaxima nullOfMaxima(std::vector<float> maxima, float own, bool isTailSmooth);

// The share of maxima that reach the value, rounding forgiven; where the null has a smooth tail, what that
// says.
[[nodiscard]] double pByMaxima(const NullMaxima& null, double value);

// The smallest value whose p is at most `level`; infinite when one maximum is more than that.
[[nodiscard]] double valueAtLevel(const NullMaxima& null, double level);

}  // namespace inference

#endif
