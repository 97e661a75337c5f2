#include "inference/z_table.h"

#include <cmath>

#include "inference/t_distribution.h"

namespace inference {

namespace {

// The limit of Z / r at r = 0: the ratio of the densities there, times that of t to r.
double slopeAtZero(int freedom) {
  const double n = freedom;
  return std::sqrt(2.0) * std::exp(std::lgamma((n + 1) / 2) - std::lgamma(n / 2));
}

double slope(double rest, int freedom) {
  const double r = std::sqrt(1 - rest);
  return r < 1e-4 ? slopeAtZero(freedom) : zOfT(tOfCorrelation(r, freedom), freedom) / r;
}

}  // namespace

ZTable::ZTable(int freedom) {
  const int perOctave = 1 << (23 - kShift);
  for (int octave = -24; octave < 0; ++octave)
    for (int i = 0; i < perOctave; ++i)
      values_.push_back(
          static_cast<float>(slope(std::ldexp(1 + i / static_cast<double>(perOctave), octave), freedom)));
  values_.push_back(static_cast<float>(slopeAtZero(freedom)));
  values_.push_back(values_.back());  // behind w = 1 itself
}

}  // namespace inference
