#include "cluster/slurm_commands.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <sstream>

namespace cluster {
namespace {

bool isNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

std::string arrayText(std::size_t tasks, int mostAtOnce) {
  return fmt::format("--array=1-{}{}", tasks, mostAtOnce > 0 ? fmt::format("%{}", mostAtOnce) : "");
}

// "JOB_NUMBER|STATE|REASON"
std::optional<QueuedTask> queuedTask(const std::string& line) {
  const std::size_t under = line.find('_'), first = line.find('|'), second = line.find('|', first + 1);
  if (under >= first || second == std::string::npos) return std::nullopt;
  QueuedTask task{line.substr(0, under), 0, line.substr(first + 1, second - first - 1),
                  line.substr(second + 1)};
  const char* end = line.data() + first;
  const auto [stop, error] = std::from_chars(line.data() + under + 1, end, task.number);
  return error == std::errc() && stop == end ? std::optional(task) : std::nullopt;
}

std::string taskName(const std::string& job, int number) {
  return fmt::format("{}_{}", job, number);
}

}  // namespace

std::string dependencyText(const Stage& stage, const std::function<std::string(const std::string&)>& jobOf) {
  std::string text;
  for (const Dependency& dependency : stage.after) {
    const std::string job = jobOf(dependency.stage);
    if (job.empty()) continue;
    const char* kind = dependency.condition == Condition::kAllSucceeded ? "afterok" : "afterany";
    text += fmt::format("{}{}:{}", text.empty() ? "" : ",", kind, job);
  }
  return text;
}

Command submitCommand(const JobChain& chain, const Stage& stage,
                      const std::map<std::string, std::string>& jobs, const SlurmOptions& options) {
  Command command = {
      "sbatch",
      "--parsable",
      "--requeue",
      "--open-mode=append",
      "--kill-on-invalid-dep=yes",
      "--job-name=tavmap-" + stage.name,
      "--chdir=" + chain.folder,
      fmt::format("--output={}/%a.slurm", stage.name),
      arrayText(stage.tasks.size(), options.mostAtOnce),
      "--ntasks=1",
      fmt::format("--cpus-per-task={}", stage.needs.processors),
      options.memory.empty() ? fmt::format("--mem={}M", stage.needs.megabytes) : "--mem=" + options.memory,
      options.time.empty() ? fmt::format("--time={}", stage.needs.minutes) : "--time=" + options.time};
  if (!options.partition.empty()) command.push_back("--partition=" + options.partition);
  const std::string dependencies = dependencyText(stage, [&](const std::string& name) {
    const auto job = jobs.find(name);
    return job == jobs.end() ? std::string() : job->second;
  });
  if (!dependencies.empty()) command.push_back("--dependency=" + dependencies);
  command.insert(command.end(), options.extra.begin(), options.extra.end());
  command.push_back(fmt::format("{}/{}.sh", chain.folder, stage.name));
  return command;
}

std::optional<std::string> submittedJob(const std::string& answer) {
  const std::string job = answer.substr(0, answer.find_first_of(";\n"));
  return isNumber(job) ? std::optional(job) : std::nullopt;
}

Command queueCommand(const std::vector<std::string>& jobs) {
  std::string list;
  for (const std::string& job : jobs) list += (list.empty() ? "" : ",") + job;
  return {"squeue", "--noheader", "--array", "--format=%i|%T|%r", "--jobs=" + list};
}

std::vector<QueuedTask> queuedTasks(const std::string& answer) {
  std::vector<QueuedTask> tasks;
  std::istringstream lines(answer);
  for (std::string line; std::getline(lines, line);) {
    if (const auto task = queuedTask(line)) tasks.push_back(*task);
  }
  return tasks;
}

bool areForgotten(const std::string& errors) {
  return errors.find("Invalid job id") != std::string::npos;
}

Command memoryCommand(const std::string& job, int number) {
  return {"scontrol", "--oneliner", "show", "job", taskName(job, number)};
}

Command accountCommand(const std::string& job, int number) {
  return {"sacct",         "--noheader",     "--parsable2",
          "--allocations", "--format=State", "--jobs=" + taskName(job, number)};
}

std::string rememberedState(const std::string& answer) {
  constexpr std::string_view kKey = "JobState=";
  const std::size_t at = answer.find(kKey);
  if (at == std::string::npos) return "";
  const std::size_t begin = at + kKey.size();
  return answer.substr(begin, answer.find_first_of(" \n", begin) - begin);
}

// "CANCELLED by 1000" is one of them.
std::string accountedState(const std::string& answer) {
  return answer.substr(0, std::min(answer.find_first_of(" \n"), answer.size()));
}

}  // namespace cluster
