#include "cluster/job_chain.h"

#include <algorithm>

namespace cluster {

std::vector<Task> bundled(const std::vector<Task>& tasks, std::size_t together) {
  const std::size_t size = std::max({together, (tasks.size() + kMostTasks - 1) / kMostTasks, std::size_t{1}});
  std::vector<Task> bundles;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    if (i % size == 0) bundles.emplace_back();
    Task& bundle = bundles.back();
    bundle.name += (bundle.name.empty() ? "" : ", ") + tasks[i].name;
    bundle.commands.insert(bundle.commands.end(), tasks[i].commands.begin(), tasks[i].commands.end());
  }
  return bundles;
}

}  // namespace cluster
