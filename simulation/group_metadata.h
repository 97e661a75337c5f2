// The texts that a simulated group study has beyond those of every tree: who is who, and what was planted.
#ifndef TAVMAP_SIMULATION_GROUP_METADATA_H
#define TAVMAP_SIMULATION_GROUP_METADATA_H

#include <cstddef>
#include <string>
#include <vector>

#include "simulation/data_set.h"
#include "simulation/group_design.h"

namespace simulation {

// "sub-01".
[[nodiscard]] std::string subjectName(int participant);

[[nodiscard]] std::string groupReadme(const GroupDesign& design);
// participant_id, group, age, sex.
[[nodiscard]] std::string groupParticipantsTable(const std::vector<Person>& people);
[[nodiscard]] std::string groupParticipantsSidecar();

// study_truth.json: which regions have an effect of what, and the measures to expect of each group under
// each condition, for one voxel, endless blocks and a participant of the mean strength; and each
// participant's group, strength and motion. `regionVoxels`: voxels of region k.
[[nodiscard]] std::string studyTruth(const GroupDesign& design, const DataSetOptions& options,
                                     const std::vector<std::size_t>& regionVoxels,
                                     const std::vector<Person>& people);

}  // namespace simulation

#endif
