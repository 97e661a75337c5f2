// The group level: what the participant level left in the records below an output folder, gathered.
// Nothing is computed again and no image is read.
#ifndef TAVMAP_GROUP_GROUP_H
#define TAVMAP_GROUP_GROUP_H

#include <filesystem>
#include <string>
#include <vector>

#include "bids/bids_layout.h"
#include "bids/bids_names.h"
#include "results/record.h"

namespace study {

// A participant's result for one reference.
struct GroupRecord {
  BidsName name;     // of the file; it says whose the record is
  std::string file;  // relative to the output folder
  // Conditions by name, maps by type, thresholds by q; the peak of a map that has none is NaN.
  Record record;
};

struct GroupResult {
  std::vector<GroupRecord> records;   // by participant, session, task, reference, file
  std::vector<std::string> cautions;  // in words
  std::vector<std::string> failures;  // one per record that could not be read, naming it
};

// Records whose inputs are gone or were changed since.
enum class Outdated { kRefused, kLeftOut };

struct GroupOptions {
  std::filesystem::path bidsDir;  // the data set that the records were made from; empty: as outDir says
  BidsQuery query;
  Outdated outdated = Outdated::kRefused;
};

// Reads every *_tavmap.json of a participant below outDir, as far as the query's participants,
// sessions, tasks and space ask for it. Throws InputError when there is none, when a label matches nothing,
// or, unless they are to be left out, when a record does not belong to the present inputs
// (present_inputs.h); the message names them all.
[[nodiscard]] GroupResult readGroup(const std::filesystem::path& outDir, const GroupOptions& options);

}  // namespace study

#endif
