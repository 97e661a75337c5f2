// What the verbs that can hand their work to a scheduler share.
#ifndef TAVMAP_APP_CLUSTER_OPTIONS_H
#define TAVMAP_APP_CLUSTER_OPTIONS_H

#include <CLI/CLI.hpp>
#include <set>
#include <string>

#include "cluster/slurm_commands.h"

namespace app {

struct ClusterArguments {
  std::string scheduler;  // empty: this machine
  cluster::SlurmOptions slurm;
  int together = 1;  // requests a task
  bool dryRun = false, collect = false, despiteFailures = false;
};

void addClusterOptions(CLI::App& command, ClusterArguments& arguments);

// Options of a command as they were given, "--name=value" each, but for those named (without dashes).
[[nodiscard]] cluster::Command givenOptions(const CLI::App& command, const std::set<std::string>& without);
// Of addClusterOptions().
[[nodiscard]] const std::set<std::string>& clusterOptionNames();

}  // namespace app

#endif
