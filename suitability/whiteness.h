// Whether a series' own model leaves nothing of its past unexplained.
#ifndef TAVMAP_SUITABILITY_WHITENESS_H
#define TAVMAP_SUITABILITY_WHITENESS_H

#include <optional>
#include <vector>

#include "suitability/autoregression.h"
#include "suitability/courses.h"

namespace suitability {

inline constexpr double kNotWhite = 0.001;  // below it residuals count as not white
inline constexpr double kWhite = 0.05;      // above it they count as white
inline constexpr int kHighestOrder = 20;    // that is tried
inline constexpr int kShortestTested = 30;

// The chance that chi-square with so many degrees of freedom, at least 1, exceeds x.
[[nodiscard]] double chiSquareTail(double x, int degrees);

// Of a model's residuals at one lag.
struct LaggedCorrelation {
  double seen = 0;
  double expected = 0;  // of white errors (detrending_bias.h)
  double pairs = 0;     // of residuals, within stretches
};
// At [lag - 1] for lags 1 ... lags. Empty for residuals of zeros.
[[nodiscard]] std::vector<LaggedCorrelation> residualCorrelations(const OwnModel& model, int lags);

struct LjungBox {
  double statistic = 0;
  int degrees = 0;
  double p = 1;
};

// The portmanteau test of a model's residuals (Ljung & Box 1978, Biometrika 65, 297-303,
// doi:10.1093/biomet/65.2.297), over order + min(20, n / 5) lags with as many degrees of freedom as lags
// minus order. Products run within stretches; a lag that fewer than half of the n residuals have is left out.
// What detrending does to the autocorrelations is taken out first (detrending_bias.h). Nothing when no degree
// of freedom is left.
[[nodiscard]] std::optional<LjungBox> ljungBox(const OwnModel& model);

// A series' own model, and whether its residuals are white.
struct OwnResiduals {
  OwnModel model;
  std::optional<LjungBox> test;
};
// The reference's, over the intervals of at least kShortestTested volumes: in shorter ones detrending hides
// what there is to see. Nothing when there is no model.
[[nodiscard]] std::optional<OwnResiduals> ownResiduals(const Courses& courses, int order);

struct NotWhite {
  LjungBox test;
  std::optional<int>
      whiteOrder;  // the lowest above the order, up to kHighestOrder, whose residuals are white
};

// Of ownResiduals() of this order. Nothing when they may be white, or cannot be tested.
[[nodiscard]] std::optional<NotWhite> findNotWhite(const Courses& courses, const OwnResiduals& residuals);

}  // namespace suitability

#endif
