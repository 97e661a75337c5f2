// From a BIDS data set and the options of the command line to one request per participant, session
// and task.
#ifndef TAVMAP_BIDS_BIDS_STUDY_H
#define TAVMAP_BIDS_BIDS_STUDY_H

#include <filesystem>
#include <string>
#include <vector>

#include "bids/bids_layout.h"
#include "request/request_file.h"

namespace study {

inline constexpr const char* kNoAnatomy = "none";

struct BidsOptions {
  std::filesystem::path bidsDir, outDir, workDir;  // workDir empty: outDir/work
  std::vector<std::filesystem::path> derivatives;
  BidsQuery query;
  std::filesystem::path atlas, atlasTable;  // a label image; empty: references come from the configuration
  std::filesystem::path anatomy;            // empty: as findAnatomy() finds it for each; kNoAnatomy: none
  std::vector<std::string> labels;          // names or indices; empty or "all": all of them
  std::vector<std::string> trialTypes;      // one condition each; empty: the configuration's, else whole runs
  double delaySeconds = 0;                  // for trialTypes
  RequestTemplate configuration;
};

// Throws InputError when the output would go into the data set's own top folder.
void requireOutputElsewhere(const std::filesystem::path& bidsDir, const std::filesystem::path& outDir);

struct BidsRequests {
  std::vector<Request> requests;
  std::vector<std::string>
      failures;  // one per participant, session and task without a request: whose, and why
};

// Throws InputError as findBidsGroups does, when there is no reference or no such anatomy, and when an option
// and the configuration contradict each other. A run that lacks the events or confounds that it needs costs
// its own participant, session and task the request; when there are no others it is an InputError. Outputs
// are named after the entities that the runs of a group share.
[[nodiscard]] BidsRequests bidsRequests(const BidsOptions& options);

}  // namespace study

#endif
