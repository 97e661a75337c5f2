// The sections of a group's page, as HTML.
#ifndef TAVMAP_REPORT_GROUP_SECTIONS_H
#define TAVMAP_REPORT_GROUP_SECTIONS_H

#include <string>
#include <utility>
#include <vector>

#include "report/group_outputs.h"

namespace report {

// A name for people: "dTAV of V1, faces, ses-2".
[[nodiscard]] std::string cellTitle(const study::GroupTestRecord& record);
// Way to a cell's part of a section: "maps-2".
[[nodiscard]] std::string cellId(const char* part, std::size_t cell);

// Who was left out, warnings, and what a mean of dTAV is not.
[[nodiscard]] std::string groupWarningsSection(const GroupOutputs& outputs);
// What was asked, and one row per map with what was found.
[[nodiscard]] std::string groupSummarySection(const GroupOutputs& outputs);

struct GroupMaps {
  std::string html, definitions;                              // as MapsSection has them
  std::vector<std::pair<std::string, std::string>> pictures;  // files beside the page: names and texts
};
// Slices and a view through the brain per map.
[[nodiscard]] GroupMaps groupMapsSection(const GroupOutputs& outputs);
// Clusters, the participants' values at the first peaks, and what each of them changes.
[[nodiscard]] std::string groupPeaksSection(const GroupOutputs& outputs);
// Who took part, with the design.
[[nodiscard]] std::string groupParticipantsSection(const GroupOutputs& outputs);
// What may be said of these very tests, and what not.
[[nodiscard]] std::string groupLimitsSection(const GroupOutputs& outputs);
[[nodiscard]] std::string groupMethodsSection(const GroupOutputs& outputs);
// Records, seeds, versions.
[[nodiscard]] std::string groupProvenanceSection(const GroupOutputs& outputs);

}  // namespace report

#endif
