// What stands behind the maps of one reference and condition: the values that maps and surrogates have, how
// the thresholds were found, and what each run's course of the reference is like. Plain values, for reports;
// what reads them reads this, evidence_json.h alone knows how they are written. Members that are empty (or
// unset) had nothing to say.
#ifndef TAVMAP_RESULTS_EVIDENCE_H
#define TAVMAP_RESULTS_EVIDENCE_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "request/volume_ranges.h"
#include "results/results.h"

namespace study {

// Of a map's values and of its null values (of all draws together) in bins between neighbouring edges, a bin
// holding its lower edge, the last one both. Values that are not numbers are in none.
struct MapHistogram {
  std::vector<double> edges;                         // ascending, equally spaced
  std::vector<std::size_t> observed, null;           // one fewer than edges
  std::size_t observedBelow = 0, observedAbove = 0;  // values beyond the edges
  std::size_t nullBelow = 0, nullAbove = 0;
  bool operator==(const MapHistogram&) const = default;
};

// The step-up rule's search at some ranks (tav/search_curve.h). The bound of q at a rank is
// rank / voxels * q / fdrConstant; a threshold is the magnitude of the last rank whose p is within it.
struct SearchEvidence {
  std::size_t voxels = 0;
  double fdrConstant = 1;
  std::vector<std::size_t> ranks;  // ascending, from 1
  std::vector<double> magnitudes, p;
  [[nodiscard]] bool empty() const { return ranks.empty(); }
  bool operator==(const SearchEvidence&) const = default;
};

struct MapEvidence {  // of a map that has thresholds
  tav::MapType type = tav::REF2VOX;
  MapHistogram histogram;
  SearchEvidence search;  // empty with method "plugin"
  bool operator==(const MapEvidence&) const = default;
};

// Shares of the variance by frequency bin (suitability/reference_spectrum.h).
struct SpectrumEvidence {
  VolumeRange interval{0, 0};  // the longest, volumes of the stored image, from 1
  std::vector<double> hertz;   // the bins' mean frequencies
  std::vector<double> reference;
  std::size_t surrogates = 0;             // looked at
  std::vector<double> low, median, high;  // 2.5, 50, 97.5 % of the surrogates; empty without
  [[nodiscard]] bool empty() const { return hertz.empty(); }
  bool operator==(const SpectrumEvidence&) const = default;
};

// Of the reference's own model (suitability/whiteness.h).
struct ResidualEvidence {
  std::size_t residuals = 0;          // how many
  std::vector<double> correlations;   // at lags 1 ... 20, as far as there are pairs
  std::vector<double> expected;       // of white errors
  double bound = 0;                   // 95 % of those of white errors lie that close to `expected`
  std::optional<double> ljungBox, p;  // unset: no degree of freedom
  int degreesOfFreedom = 0;
  [[nodiscard]] bool empty() const { return residuals == 0; }
  bool operator==(const ResidualEvidence&) const = default;
};

// Shares of the variance that a series' own past predicts (suitability/noise.h).
struct PredictabilityEvidence {
  double reference = 0, medianVoxel = 0;
  std::size_t voxels = 0;  // looked at
  [[nodiscard]] bool empty() const { return voxels == 0; }
  bool operator==(const PredictabilityEvidence&) const = default;
};

// Frame-wise displacement of all stored volumes.
struct MotionEvidence {
  std::string source;                // in words
  std::vector<double> displacement;  // millimetres; NaN where there is none
  [[nodiscard]] bool empty() const { return displacement.empty(); }
  bool operator==(const MotionEvidence&) const = default;
};

struct RunEvidence {             // of one run, or a pair, of a condition
  std::string run;               // whose voxels are mapped, and whose volumes are counted
  std::string referenceFromRun;  // whose reference course is used; empty: the same
  double repetitionTime = 0;     // seconds
  int volumes = 0, droppedVolumes = 0;
  std::vector<int> censoredVolumes;  // of the stored image, from 1; no dropped ones
  std::vector<int> spikes;           // likewise; in reference and voxels at once
  SpectrumEvidence spectrum;
  ResidualEvidence residuals;
  PredictabilityEvidence predictability;
  MotionEvidence motion;
  bool operator==(const RunEvidence&) const = default;
};

struct Evidence {
  std::string reference, condition;
  std::string version;  // of the software
  std::vector<MapEvidence> maps;
  std::vector<RunEvidence> runs;
  // Voxels of each slice k, by status code.
  std::array<std::vector<std::size_t>, kStatusCodes> voxelsBySlice;
  bool operator==(const Evidence&) const = default;
};

}  // namespace study

#endif
