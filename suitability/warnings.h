// Warnings, in plain words, about data whose maps of directed influence should not be trusted: what was seen,
// what it does to the maps, what to do.
#ifndef TAVMAP_SUITABILITY_WARNINGS_H
#define TAVMAP_SUITABILITY_WARNINGS_H

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "suitability/courses.h"
#include "suitability/run_findings.h"

namespace suitability {

// One run as the maps of one condition and one reference use it. The series are not owned; all have the
// length of the reference's. Some 50 voxels, spread over those that are mapped, are enough.
struct SuitabilityInput {
  std::string run, reference;  // names
  double trSeconds = 0;
  int order = 1;                    // of the models
  std::vector<Interval> intervals;  // of the run as prepared, 0-based
  std::span<const float> referenceSeries;
  std::vector<std::span<const float>> voxels;
  // Leading ones, left out already; warnings count volumes of the stored image from 1.
  int droppedVolumes = 0;
  bool filtered = false;    // in time: known to be, and said elsewhere
  bool highPassed = false;  // known to be: cosine columns regressed, or named in the sidecar
  int confoundRank = 0;     // of what was regressed; 0 and not filtered: a raw run
};

// What the checks find in one run. Nothing when the reference is flat or not finite, or without a voxel that
// is neither: the engine refuses those. Some 40 transforms and fits: milliseconds.
[[nodiscard]] std::optional<RunFindings> findingsOf(const SuitabilityInput& input);

// The warnings about one run, from what was found in it. Warnings about the run's voxels do not name the
// reference, so that several references give the same text.
[[nodiscard]] std::vector<std::string> runWarnings(const SuitabilityInput& input,
                                                   const std::optional<RunFindings>& findings);
// The same, from findingsOf() the input.
[[nodiscard]] std::vector<std::string> runWarnings(const SuitabilityInput& input);

// The warning about all runs of a condition together, of one order: fewer than ten effective samples for each
// coefficient of the joint model. Empty when there are enough.
[[nodiscard]] std::string fewSamplesWarning(const std::string& condition,
                                            const std::vector<SuitabilityInput>& runs);

}  // namespace suitability

#endif
