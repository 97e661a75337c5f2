// Geweke's measures from error variances, W voxels at once (J. Geweke, Measurement of linear
// dependence and feedback between multiple time series, JASA 77, 1982). Included once per CPU
// file, behind its Simd.
#ifndef TAVMAP_TAV_KERNEL_MEASURES_INL_H
#define TAVMAP_TAV_KERNEL_MEASURES_INL_H

#include "tav/kernel/fit-inl.h"

namespace tav::kernel {
namespace {

// Natural logarithm of positive normal numbers to about 2 ulp, exact 0 at 1; anything else gives
// some number. With q = 2^e m, m in [1/sqrt 2, sqrt 2), and s = (m - 1) / (m + 1), |s| < 0.172:
// ln m = 2 s (1 + s^2/3 + s^4/5 + s^6/7 + s^8/9 + ...), the next term being below 2e-9.
template <class S>
typename S::Floats naturalLog(typename S::Floats q) {
  const auto bits = S::bits(q);
  const auto fromRoot = S::sub(bits, S::allInts(0x3F3504F3));  // sqrt 1/2
  const auto mantissa = S::fromBits(S::sub(bits, S::both(fromRoot, S::allInts(-0x800000))));
  const auto exponent = S::toFloats(S::template shiftRight<23>(fromRoot));
  const auto s = (mantissa - S::all(1.0F)) / (mantissa + S::all(1.0F));
  const auto z = s * s;
  auto series = S::madd(z, S::all(1.0F / 9.0F), S::all(1.0F / 7.0F));
  series = S::madd(series, z, S::all(1.0F / 5.0F));
  series = S::madd(series, z, S::all(1.0F / 3.0F));
  const auto twice = s + s;
  const auto logMantissa = S::madd(twice * z, series, twice);
  // ln 2 in two parts, the first with few enough bits that its product with e is exact.
  return S::madd(exponent, S::all(0.693359375F), S::madd(exponent, S::all(-2.12194440e-4F), logMantissa));
}

template <class S>
struct Measures {
  typename S::Floats referenceToVoxel, voxelToReference, instantaneous;
};

// Marks lanes in which a value is not within low ... high, or NaN; but not those that have failed
// already, for what follows a negative pivot is NaN.
template <class S, class View>
void demandRange(typename S::Floats value, float low, float high, Doubts<S, View>& doubts) {
  const auto inside = S::lessEqual(S::all(low), value) & S::lessEqual(value, S::all(high));
  doubts.unsure |= ~(inside | doubts.failed);
}

// Nested models over the same samples have ratios of at least 1, up to rounding.
template <class S, class View>
typename S::Floats logOfRatio(typename S::Floats ratio) {
  const auto log = naturalLog<S>(ratio);
  return View::leastSquares ? S::larger(log, S::zero()) : log;
}

template <class S, class View>
Measures<S> measure(typename S::Floats xError, typename S::Floats yError, typename S::Floats ySquares,
                    const JointErrors<S>& joint, Doubts<S, View>& doubts) {
  const auto yGivenX = joint.yy - joint.xy * (joint.xy / joint.xx);
  doubts.check(yGivenX, ySquares);
  const auto toVoxel = yError / joint.yy, toReference = xError / joint.xx, both = joint.yy / yGivenX;
  demandRange<S>(toVoxel, 1e-6F, 1e6F, doubts);
  demandRange<S>(toReference, 1e-6F, 1e6F, doubts);
  demandRange<S>(both, 1e-6F, 1e6F, doubts);
  return {logOfRatio<S, View>(toVoxel), logOfRatio<S, View>(toReference), logOfRatio<S, View>(both)};
}

}  // namespace
}  // namespace tav::kernel

#endif
