// What the test of a group found.
#ifndef TAVMAP_INFERENCE_TEST_RESULT_H
#define TAVMAP_INFERENCE_TEST_RESULT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "inference/spread.h"
#include "inference/symmetry.h"
#include "inference/tail.h"

namespace inference {

// Places that touch, all beyond the cluster-forming Z on one side.
struct Cluster {
  std::vector<std::int32_t> places;  // ascending
  std::size_t peak = 0;              // the place of the largest |Z|
  double mass = 0;                   // sum of |Z| - forming Z (Bullmore et al. 1999, doi:10.1109/42.750253)
  int sign = 1;
  double pFwe = 1;  // by the largest mass of each shuffle
};

// A statistic's null: the maximum of every shuffle, the data as they are among them.
struct NullMaxima {
  std::vector<float> sorted;       // ascending; empty when the statistic was not asked for
  std::optional<ParetoTail> tail;  // when it is used: p of values above its begin come from it
};

// Maps have a value per place, NaN where nothing is tested. Two-sided tests compare magnitudes; enhanced
// values have the sign of the effect. p count the data as they are among the shuffles.
struct TestResult {
  std::vector<float> effect;               // the contrast's estimate
  std::vector<float> t;                    // with smoothed variances: their pseudo-t (Nichols & Holmes 2002)
  std::vector<float> z;                    // of the same probability as t; of pseudo-t: itself
  std::vector<float> p;                    // of this place alone
  std::vector<float> pFwe;                 // by the largest Z anywhere
  std::vector<float> qFdr;                 // of p (Benjamini & Hochberg 1995), see false_discovery.h
  std::vector<float> enhanced, pEnhanced;  // empty unless asked for; p by the largest enhanced value
  std::vector<int> rows;                   // that have a value, tested or not
  std::size_t tested = 0;                  // places
  int freedom = 0;                         // degrees of freedom where all rows have values

  std::vector<Cluster> clusters;  // by descending mass
  NullMaxima nullZ, nullEnhanced, nullMass;
  // The smallest |t| with pFwe <= .05 where all rows have values, found or not; infinite when the shuffles
  // are too few for it. The smallest |t| with qFdr <= .05; infinite when there is none.
  double tAtFwe05 = 0, tAtQ05 = 0;

  std::size_t shuffles = 0;          // the data as they are among them
  bool isExhaustive = false;         // these are all there are
  std::optional<Symmetry> symmetry;  // of sign flips
  std::optional<Spread> spread;      // of permutations between two groups
};

}  // namespace inference

#endif
