// Error rates over many simulated data sets.
#ifndef TAVMAP_TESTS_CALIBRATION_RATES_H
#define TAVMAP_TESTS_CALIBRATION_RATES_H

#include <algorithm>
#include <cmath>

#include "tests/calibration/written_results.h"

namespace calibration {

struct Mean {
  double sum = 0, squares = 0;
  int n = 0;
  void add(double value) {
    sum += value;
    squares += value * value;
    ++n;
  }
  [[nodiscard]] double mean() const { return sum / n; }
  [[nodiscard]] double standardError() const {
    return n < 2 ? 0 : std::sqrt(std::max(0.0, squares / n - mean() * mean()) / (n - 1));
  }
};

// Of one analysis, condition and q.
struct Rates {
  Mean anyPasses, falseShare, falseShareOfAll, power;

  void add(const Discoveries& found) {
    anyPasses.add(found.any() ? 1 : 0);
    falseShare.add(found.falseShare());
    falseShareOfAll.add(found.falseShareOfAll());
    power.add(found.power());
  }
};

}  // namespace calibration

#endif
