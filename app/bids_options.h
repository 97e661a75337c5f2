// What `tavmap bids` can be told, and the requests that come of it: for the verbs that compute them, plan
// them or hand them to a scheduler.
#ifndef TAVMAP_APP_BIDS_OPTIONS_H
#define TAVMAP_APP_BIDS_OPTIONS_H

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "app/group_options.h"
#include "app/study_options.h"
#include "bids/bids_study.h"

namespace app {

struct BidsArguments {
  study::BidsOptions options;
  std::string bidsDir, outDir, workDir, filterFile, configFile, atlas, atlasTable, anatomy, drop;
  std::vector<std::string> levels, derivatives, confounds;
  std::string memory;
  std::string datasetFiles;  // where the files of the data set as a whole go; empty: the output folder
  double fdThreshold = -1, trSeconds = 0;
  bool stopOnFirstCrash = false, reportsOnly = false, leaveOutOutdated = false;
  std::string connectomes;  // "also", "only", or empty: none
  bool ignored = false;     // flags that schedulers pass and nothing here needs
  int threadsPerWorker = 1;
  StudyArguments study;
  GroupTestArguments tests;
};

// Which data, and what to do with them; and how it runs on this machine.
void addQueryOptions(CLI::App& command, study::BidsQuery& query);
void addInputOptions(CLI::App& command, BidsArguments& arguments);
void addRunningOptions(CLI::App& command, BidsArguments& arguments);

// Throws study::InputError.
[[nodiscard]] study::BidsRequests requestsOf(const BidsArguments& arguments);
// The work folder that they share.
[[nodiscard]] std::filesystem::path workFolderOf(const BidsArguments& arguments);

}  // namespace app

#endif
