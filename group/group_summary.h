// What the group level found, for a person at a terminal and for programs: in how many participants
// a map has any voxel that passes. Counts, no inference about a population.
#ifndef TAVMAP_GROUP_GROUP_SUMMARY_H
#define TAVMAP_GROUP_GROUP_SUMMARY_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>

#include "group/group.h"

namespace study {

// Per session, task, reference, condition and map: of the participants who have that map with that
// q, those with a voxel outside the reference at or above their own threshold, and the range of
// the participants' peaks; then what the counts mean, and the cautions.
void printGroup(const GroupResult& group, std::ostream& out);

nlohmann::ordered_json groupJson(const GroupResult& group, const std::string& version);

}  // namespace study

#endif
