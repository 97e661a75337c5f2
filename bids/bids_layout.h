// Finding preprocessed runs, and what belongs to each, in a BIDS data set and its derivatives.
#ifndef TAVMAP_BIDS_BIDS_LAYOUT_H
#define TAVMAP_BIDS_BIDS_LAYOUT_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "bids/bids_names.h"

namespace study {

// What is asked for. Empty lists ask for everything. Labels come with or without "sub-", "ses-" ...
struct BidsQuery {
  std::vector<std::string> participants, sessions, tasks, runs;
  std::string space;  // empty: the only one there is; "native": names without space
  // Further entities that must match, key without dash; empty: names without it.
  std::map<std::string, std::string> entities;
};

struct BidsRun {
  BidsName name;  // of the image
  std::filesystem::path bold;
  std::filesystem::path mask;       // empty: none found
  std::filesystem::path confounds;  // empty: none found
  std::filesystem::path events;     // in the raw data set; empty: none found
};

// Runs of one participant, session and task, in ascending run number: pooled into one model.
struct BidsGroup {
  std::string participant, session, task;
  std::vector<BidsRun> runs;
  // "sub-01_ses-1_task-rest_space-X": the entities that all runs share.
  [[nodiscard]] std::string entities() const;
  // "sub-01/ses-1/func" below an output folder.
  [[nodiscard]] std::filesystem::path folder() const;
};

// bidsDir: the raw data set, or a derivative itself. derivatives: folders of preprocessed data;
// empty: those below bidsDir/derivatives, and bidsDir. Only reads. Throws InputError when a label
// matches nothing (with the nearest known one), when several spaces would fit and none was asked
// for, and when no run is left.
[[nodiscard]] std::vector<BidsGroup> findBidsGroups(const std::filesystem::path& bidsDir,
                                                    const std::vector<std::filesystem::path>& derivatives,
                                                    const BidsQuery& query);

// A BIDS filter file: {"bold": {"acquisition": "mb", "echo": 1, "res": null, ...}}; returns entities by their
// short keys. null, an empty text here, asks for names without the entity. Keys that the filter knows under
// their long names ("session", "task", "run", "space") are translated.
[[nodiscard]] std::map<std::string, std::string> readBidsFilter(const std::filesystem::path& file);
[[nodiscard]] std::map<std::string, std::string> parseBidsFilter(const std::string& text,
                                                                 const std::string& name);

}  // namespace study

#endif
