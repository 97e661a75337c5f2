// Geweke's measures of linear feedback between two series.
#ifndef TAVMAP_SIMO_GEWEKE_H
#define TAVMAP_SIMO_GEWEKE_H

#include "simo/orthogonal_search.h"

namespace simo {

// Fits three models of one order to the averages of a pair of series, the joint one and each series
// alone, and compares their prediction-error covariances:
//   fx2y  feedback from x to y, ln(|E_y| / |S_yy|)
//   fy2x  feedback from y to x, ln(|E_x| / |S_xx|)
//   fxy   instantaneous feedback, ln(|S_xx| |S_yy| / |S|)
// with E of the single models and S of the joint one. Natural logarithms in single precision,
// neither scaled by the number of time points nor cut at 0: rounding may leave tiny negative values.
//
// avg: two series, 0-based; ix, iy: the index of x and of y in it (0 and 1, or 1 and 0). full: a work
// area of 2 series, on return with the joint error covariance S; restrX, restrY: of 1 series each.
// All of one order. False, with the measures unwritten, when a model is degenerate; NaN in the
// averages passes through to the measures. Allocates nothing. Instantiated for float.
//
// Geweke 1982, Journal of the American Statistical Association 77, 304-313,
// doi:10.1080/01621459.1982.10477803.
template <class T>
[[nodiscard]] bool gewekeX2Y(const FosAvg<T>& avg, int ix, int iy, FosOrth<T>& full, FosOrth<T>& restrX,
                             FosOrth<T>& restrY, T& fx2y, T& fy2x, T& fxy);

}  // namespace simo

#endif
