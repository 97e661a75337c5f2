// The measures of the library under test for a whole matrix, in one call.
#ifndef TAVMAP_TESTS_SIMO_MEASURED_H
#define TAVMAP_TESTS_SIMO_MEASURED_H

#include "simo/geweke.h"

namespace test {

struct Measured {
  bool defined;
  float x2y;
  float y2x;
  float xy;
};

// Rows 0 and 1 of x, as they are: without detrending.
inline Measured measure(const simo::Matrix<float>& x, int p, simo::LagPairForm form) {
  simo::FosAvg<float> avg(2, p);
  simo::FosOrth<float> full(2, p);
  simo::FosOrth<float> restrX(1, p);
  simo::FosOrth<float> restrY(1, p);
  simo::accum_actavgs(x, 0, 2, x.colBase, x.colEnd, avg, form);
  Measured result{false, -1, -1, -1};
  result.defined = simo::gewekeX2Y(avg, 0, 1, full, restrX, restrY, result.x2y, result.y2x, result.xy);
  return result;
}

}  // namespace test

#endif
