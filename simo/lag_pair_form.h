// The two forms of the lag-pair averages C(m, k) of several series.
#ifndef TAVMAP_SIMO_LAG_PAIR_FORM_H
#define TAVMAP_SIMO_LAG_PAIR_FORM_H

namespace simo {

enum class LagPairForm {
  // Lag sums in their own orientation, edge products in the transposed one. From order 2 on the
  // joint models of two series then differ from least squares. The plug-in's numbers.
  kWritten,
  // Rows belong to lag m, columns to lag k, and every element loses its own edge products, so
  // that C(m, k) = (1/N) sum x(t-m) x(t-k)^T over t = m ... N-1. Agrees with least squares.
  kConsistent
};

}  // namespace simo

#endif
