#include "cluster/submission.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "cluster/run_command.h"
#include "formats/atomic_file.h"
#include "formats/file_error.h"

namespace cluster {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

void keep(const Submission& submission) {
  Json stages = Json::array();
  for (const SubmittedStage& stage : submission.stages)
    stages.push_back({{"Stage", stage.name}, {"Job", stage.job}, {"Tasks", stage.tasks}});
  formats::writeTextFile((submission.folder / kSubmissionFile).string(),
                         Json{{"Scheduler", "slurm"}, {"Stages", stages}}.dump(2) + "\n");
}

Submission readSubmission(const fs::path& folder) {
  const std::string file = (folder / kSubmissionFile).string();
  Submission submission{folder, {}};
  try {
    const Json json = Json::parse(formats::readTextFile(file));
    for (const Json& stage : json.at("Stages"))
      submission.stages.push_back({stage.at("Stage").get<std::string>(), stage.at("Job").get<std::string>(),
                                   stage.at("Tasks").get<std::vector<std::string>>()});
  } catch (const Json::exception& error) {
    throw formats::FileError(file, std::string("it is no record of a submission: ") + error.what(),
                             "Remove its folder, once none of its jobs is left in the queue");
  }
  return submission;
}

std::string submitted(const JobChain& chain, const Stage& stage,
                      const std::map<std::string, std::string>& jobs, const SlurmOptions& options) {
  const Answer answer = run(submitCommand(chain, stage, jobs, options));
  const auto job = submittedJob(answer.out);
  if (answer.exitCode == 0 && job) return *job;
  const std::string said = answer.err.empty() ? answer.out : answer.err;
  throw std::runtime_error(fmt::format(
      "Slurm did not take the {} jobs (sbatch, exit code {}): {}\nthe scripts are in {}; mend what it says, "
      "with "
      "--partition, --time, --mem-per-task or --sbatch-option, and repeat the command",
      stage.name, answer.exitCode, said.substr(0, said.find_last_not_of('\n') + 1), chain.folder));
}

// Their numbers, ascending.
std::vector<int> numberedFolders(const fs::path& parent) {
  std::vector<int> numbers;
  if (!fs::is_directory(parent)) return numbers;
  for (const fs::directory_entry& entry : fs::directory_iterator(parent)) {
    const std::string name = entry.path().filename().string();
    int number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error == std::errc() && end == name.data() + name.size() && number > 0) numbers.push_back(number);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

fs::path numbered(const fs::path& parent, int number) {
  return parent / fmt::format("{:03}", number);
}

}  // namespace

Submission submit(const JobChain& chain, const SlurmOptions& options) {
  Submission submission{chain.folder, {}};
  std::map<std::string, std::string> jobs;
  for (const Stage& stage : chain.stages) {
    jobs[stage.name] = submitted(chain, stage, jobs, options);
    submission.stages.push_back({stage.name, jobs[stage.name], {}});
    for (const Task& task : stage.tasks) submission.stages.back().tasks.push_back(task.name);
    keep(submission);
  }
  return submission;
}

fs::path nextFolder(const fs::path& parent) {
  const std::vector<int> numbers = numberedFolders(parent);
  return numbered(parent, numbers.empty() ? 1 : numbers.back() + 1);
}

std::optional<Submission> lastSubmission(const fs::path& parent) {
  std::vector<int> numbers = numberedFolders(parent);
  for (auto number = numbers.rbegin(); number != numbers.rend(); ++number) {
    const fs::path folder = numbered(parent, *number);
    if (fs::exists(folder / kSubmissionFile)) return readSubmission(folder);
  }
  return std::nullopt;
}

}  // namespace cluster
