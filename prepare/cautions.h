// What a reader must know before interpreting a map: warnings in words, for the log, the sidecars
// and the terminal. Nothing here stops a study.
#ifndef TAVMAP_PREPARE_CAUTIONS_H
#define TAVMAP_PREPARE_CAUTIONS_H

#include <string>
#include <vector>

#include "formats/protocol.h"
#include "request/request.h"

namespace study {

// Filters in time that the run has been through: those of its sidecar, or what its file's name says.
[[nodiscard]] std::vector<std::string> knownFilters(const RunRequest& run,
                                                    const std::vector<std::string>& filters);
// Whether cosine columns, of the table or of high_pass, are among the regressed: a high-pass filter.
[[nodiscard]] bool isHighPassed(const std::vector<std::string>& regressed);

// A filter in the sidecar or the file's name, a filter among the regressed columns, a TR above
// 3 s. `regressed`: names of the columns taken out.
[[nodiscard]] std::vector<std::string> runCautions(const RunRequest& run, double trSeconds,
                                                   const std::vector<std::string>& filters,
                                                   const std::vector<std::string>& regressed);

// Rows of the run's events table that are left out or last no time, with their lines; empty without any.
[[nodiscard]] std::string eventsCaution(const RunRequest& run, const std::vector<formats::FlawedRow>& flawed);

// When some runs have a mask and others none; empty otherwise.
[[nodiscard]] std::string mixedMasksCaution(const std::vector<RunRequest>& runs, int inclusionThreshold);

// With method "plugin" (others: suitability/warnings.h). Fewer than 10 effective samples per model
// parameter. A joint model of two series has 4 * order
// coefficients per fit. Empty when there are enough.
[[nodiscard]] std::string fewSamplesCaution(const std::string& condition, int effectiveVolumes, int order);

// A reference of fewer than two voxels; empty otherwise.
[[nodiscard]] std::string smallReferenceCaution(const std::string& reference, int voxels);

}  // namespace study

#endif
