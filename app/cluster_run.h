// `tavmap bids --scheduler slurm`: its levels as job arrays of a cluster.
#ifndef TAVMAP_APP_CLUSTER_RUN_H
#define TAVMAP_APP_CLUSTER_RUN_H

#include <CLI/CLI.hpp>

#include "app/bids_options.h"
#include "app/cluster_options.h"

namespace app {

[[nodiscard]] bool isForCluster(const ClusterArguments& cluster);

// Tells what became of an earlier submission; submits what is missing when none of its jobs is left in the
// queue. `command`: as it was parsed, whose options the tasks get. Returns the exit code: 1 when a task
// failed or a request cannot be computed. Throws study::InputError, std::runtime_error.
[[nodiscard]] int onCluster(const CLI::App& command, const BidsArguments& arguments,
                            const ClusterArguments& cluster);

}  // namespace app

#endif
