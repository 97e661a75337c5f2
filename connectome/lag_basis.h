// A series turned into a few vectors of length 1, from whose products with those of another series all
// measures of the pair follow.
#ifndef TAVMAP_CONNECTOME_LAG_BASIS_H
#define TAVMAP_CONNECTOME_LAG_BASIS_H

#include <cstddef>
#include <span>
#include <vector>

#include "connectome/lag_windows.h"

namespace connectome {

// What models have beside the pair: nothing, the past of what is given, or its present as well.
enum class Given { kNothing, kPast, kPresent };

// Of a series with models of order p: vector 0 is the error of its model by its own past, vectors 1 ... p
// span that past. All are orthogonal to each other and to what is given, and have length 1. (Models of what
// is left are those with the given series among their terms: Frisch & Waugh 1933, Econometrica 1, 387-401,
// doi:10.2307/1907330.)
class LagBasis {
 public:
  LagBasis(const NodeSeries& series, int order, Given given);

  [[nodiscard]] std::size_t samples() const { return windows_.samples(); }
  [[nodiscard]] std::size_t vectors() const { return windows_.vectors(); }
  // Independent directions of what is given.
  [[nodiscard]] std::size_t givenRank() const { return samples() == 0 ? 0 : given_.size() / samples(); }

  // course: per run, the values of all volumes. basis: vectors() rows of samples() values. False, and the
  // basis is undefined, when the series or its model is degenerate: what is left of a variable's sum of
  // squares is not above 1e-12 of it, or not finite. Allocates nothing; about p^2 + p rank passes over
  // the samples.
  [[nodiscard]] bool of(const std::vector<const float*>& course, std::span<double> basis);

 private:
  void addGiven(const NodeSeries& series, Given given);

  LagWindows windows_;
  std::vector<double> given_;  // orthonormal rows
};

}  // namespace connectome

#endif
