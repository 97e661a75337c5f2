// What measures are conditional on.
#ifndef TAVMAP_CONNECTOME_CONDITIONING_H
#define TAVMAP_CONNECTOME_CONDITIONING_H

#include <cstddef>

#include "connectome/edge_shares.h"
#include "connectome/edge_tests.h"

namespace connectome {

// Every pair given all other nodes: one model of all nodes by the past of all. influence: what the source's
// past adds to a model by the past of all others (the target's own among them); instantaneous: partial
// correlation of the errors (Geweke 1984, Journal of the American Statistical Association 79, 907-915,
// doi:10.1080/01621459.1984.10477110). In double precision. Throws std::runtime_error, in words for the user,
// when there are too few samples, or when nodes follow from each other.
struct GivenAllOthers {
  EdgeShares shares;
  std::size_t residualFreedom = 0;  // samples less coefficients and what detrending has taken
};
[[nodiscard]] GivenAllOthers givenAllOthers(const NodeSeries& series, int order);

// Samples that this needs: ten for each coefficient of a node's model.
[[nodiscard]] std::size_t samplesForAllOthers(std::size_t nodes, int order);

// p of shares of a least-squares fit whose errors are white and normal: F tests of the source's lags, of the
// partial correlation; the net measure has none and is NaN. Family-wise p as Bonferroni: p times the edges.
[[nodiscard]] EdgeTests testParametrically(const GivenAllOthers& fit, Measure measure, int order,
                                           double constant);

// I_x(a, b), the regularised incomplete beta function, by its continued fraction (Press et al. 2007,
// Numerical Recipes, 6.4, after Didonato & Morris 1992, ACM Transactions on Mathematical Software 18,
// 360-373).
[[nodiscard]] double incompleteBeta(double x, double a, double b);

}  // namespace connectome

#endif
