// The group level: what the participant level left in the records below an output folder, gathered.
// Nothing is computed again and no image is read.
#ifndef TAVMAP_STUDY_BIDS_GROUP_H
#define TAVMAP_STUDY_BIDS_GROUP_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "study/bids_layout.h"
#include "study/bids_names.h"
#include "study/results.h"

namespace study {

struct GroupCondition {
  std::string name;
  int effectiveVolumes = 0;
  std::size_t voxelsComputed = 0;
  std::vector<MapResult> maps;  // by type; thresholds by q; a peak that the record lacks is NaN
};

// One record: a participant's result for one reference.
struct GroupRecord {
  BidsName name;     // of the file; it says whose the record is
  std::string file;  // relative to the output folder
  std::string reference, method, version;
  int order = 0;
  std::uint32_t seed = 0;                  // of the study
  std::vector<GroupCondition> conditions;  // by name
};

struct GroupResult {
  std::vector<GroupRecord> records;   // by participant, session, task, reference, file
  std::vector<std::string> cautions;  // in words
  std::vector<std::string> failures;  // one per record that could not be read, naming it
};

// Reads every *_tavmap.json of a participant below outDir, as far as the query's participants,
// sessions, tasks and space ask for it. Throws InputError when there is none, or when a label
// matches nothing.
GroupResult readGroup(const std::filesystem::path& outDir, const BidsQuery& query);

}  // namespace study

#endif
