// The texts of a BIDS tree: descriptions, sidecars, participants.
#ifndef TAVMAP_SIMULATION_BIDS_METADATA_H
#define TAVMAP_SIMULATION_BIDS_METADATA_H

#include <string>
#include <vector>

#include "simulation/confounds.h"

namespace simulation {

inline constexpr const char* kTask = "blocks";
inline constexpr const char* kSpace = "MNI152NLin2009cAsym";

[[nodiscard]] std::string rawDescription();
[[nodiscard]] std::string derivativeDescription(const std::string& name);
[[nodiscard]] std::string readmeText();
[[nodiscard]] std::string participantsTable(int participants);
[[nodiscard]] std::string participantsSidecar();
[[nodiscard]] std::string eventsSidecar();
[[nodiscard]] std::string anatomySidecar();
[[nodiscard]] std::string rawBoldSidecar(double trMs, int slices);  // all slices at once
[[nodiscard]] std::string preprocessedBoldSidecar(double trMs);
[[nodiscard]] std::string maskSidecar();
[[nodiscard]] std::string confoundsSidecar(const std::vector<Confound>& confounds);

}  // namespace simulation

#endif
