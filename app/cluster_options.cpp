#include "app/cluster_options.h"

#include <fmt/core.h>

namespace app {

void addClusterOptions(CLI::App& command, ClusterArguments& arguments) {
  CLI::Option* scheduler =
      command
          .add_option(
              "--scheduler", arguments.scheduler,
              "Hand the work to a scheduler, as job arrays; repeated, tell how far they are and submit "
              "what is missing")
          ->check(CLI::IsMember({"slurm"}));
  command
      .add_flag("--dry-run,--dry_run", arguments.dryRun, "Write and print the scripts, and submit nothing")
      ->needs(scheduler);
  command.add_flag("--collect", arguments.collect, "Tell what became of the jobs, and submit nothing")
      ->needs(scheduler);
  command
      .add_flag("--despite-failures,--despite_failures", arguments.despiteFailures,
                "Let the group level go on with the participants that succeeded")
      ->needs(scheduler);
  command.add_option("--partition", arguments.slurm.partition, "Partition of the cluster")->needs(scheduler);
  command
      .add_option("--time", arguments.slurm.time,
                  "Time limit of a task, as the scheduler writes it; default: measured here, with a margin")
      ->needs(scheduler);
  command
      .add_option("--mem-per-task,--mem_per_task", arguments.slurm.memory,
                  "Memory of a task, such as 2G; default: from the sizes of the images, with a margin")
      ->needs(scheduler);
  command
      .add_option("--at-once,--at_once", arguments.slurm.mostAtOnce,
                  "Tasks that may run at the same time; default: as many as the scheduler lets")
      ->needs(scheduler)
      ->check(CLI::Range(1, 100000));
  command
      .add_option("--per-task,--per_task", arguments.together,
                  "Participants and sessions that one task computes in turn")
      ->needs(scheduler)
      ->check(CLI::Range(1, 100000))
      ->capture_default_str();
  command
      .add_option("--sbatch-option,--sbatch_option", arguments.slurm.extra,
                  "A further option of sbatch, such as --sbatch-option=--account=lab; may be repeated")
      ->needs(scheduler)
      ->allow_extra_args(false);
}

cluster::Command givenOptions(const CLI::App& command, const std::set<std::string>& without) {
  cluster::Command words;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() || option->count() == 0) continue;
    const std::string name = option->get_lnames().empty() ? "" : option->get_lnames().front();
    if (name.empty() || without.count(name) > 0) continue;
    const bool isFlag = option->get_expected_max() == 0;
    for (const std::string& value : option->results())
      words.push_back(isFlag ? "--" + name : fmt::format("--{}={}", name, value));
  }
  return words;
}

const std::set<std::string>& clusterOptionNames() {
  static const std::set<std::string> names = {"scheduler", "dry-run",      "collect", "despite-failures",
                                              "partition", "time",         "at-once", "mem-per-task",
                                              "per-task",  "sbatch-option"};
  return names;
}

}  // namespace app
