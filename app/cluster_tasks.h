// The stages of a study on a cluster, each task an ordinary command of this program.
#ifndef TAVMAP_APP_CLUSTER_TASKS_H
#define TAVMAP_APP_CLUSTER_TASKS_H

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "app/bids_options.h"
#include "app/cluster_options.h"
#include "cluster/job_chain.h"
#include "planning/survey.h"

namespace app {

// What the words of every task are made from.
struct TaskMaker {
  const CLI::App& command;  // as it was parsed
  const BidsArguments& arguments;
  std::string program;           // absolute
  std::filesystem::path folder;  // of the chain, absolute

  // A participant's tasks leave the files of the data set as a whole in folders of their own below this one.
  [[nodiscard]] std::filesystem::path parts() const { return folder / "parts"; }
};

// One task for each request with missing results; requests that no labels tell apart share one. `force` is
// part of their options.
[[nodiscard]] std::vector<cluster::Task> participantTasks(const TaskMaker& maker,
                                                          const std::vector<planning::Surveyed>& requests);
[[nodiscard]] cluster::Task groupTask(const TaskMaker& maker);
// Gathers the files of the data set and writes the pages, of all levels.
[[nodiscard]] cluster::Task reportsTask(const TaskMaker& maker);

}  // namespace app

#endif
