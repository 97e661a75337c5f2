#include "cluster/job_files.h"

#include <fmt/core.h>

#include <filesystem>

#include "formats/atomic_file.h"

namespace cluster {
namespace {

// {0} name, {1} number of tasks, {2} folder, {3} working folder. The group of processes ends with the script,
// so that nothing works on after a time limit; a code is there whole or not at all.
constexpr const char* kScript = R"(#!/bin/bash
# Runs task N of {1} in {0}.tasks, with N from Slurm's array or as the argument: bash {0}.sh N
set -um
folder={2}
number=${{1:-${{SLURM_ARRAY_TASK_ID:?there is no array; give the number of a task}}}}
base=$folder/{0}/$number
cd -- {3} || exit 1
mkdir -p -- "$folder/{0}" && rm -f -- "$base.code" || exit 1
mapfile -s $((number - 1)) -n 1 -t task <"$folder/{0}.tasks"
[ -n "${{task[0]:-}}" ] || {{ echo "no task $number in $folder/{0}.tasks" >&2; exit 1; }}
bash -c "${{task[0]}}" >"$base.out" 2>"$base.err" &
child=$!
trap 'kill -TERM -- "-$child" 2>/dev/null' TERM INT
code=0
wait "$child" || code=$?
while kill -0 "$child" 2>/dev/null; do wait "$child" || code=$?; done
echo "$code" >"$base.code.part" && mv -- "$base.code.part" "$base.code"
exit "$code"
)";

constexpr const char* kSubmitHead = R"(#!/bin/bash
# Submits the job arrays of this folder to Slurm.
set -euo pipefail
)";

std::string taskLine(const Task& task) {
  if (task.commands.size() == 1) return shellLine(task.commands[0]);
  std::string line = "code=0";
  for (const Command& command : task.commands) line += fmt::format("; {} || code=$?", shellLine(command));
  return line + "; exit $code";
}

// In place of the number of a job that is not there yet.
std::string shellVariable(const std::string& stage) {
  return fmt::format("${{{}%%;*}}", stage);
}

}  // namespace

std::string taskList(const Stage& stage) {
  std::string text;
  for (const Task& task : stage.tasks) text += taskLine(task) + "\n";
  return text;
}

std::string stageScript(const JobChain& chain, const Stage& stage) {
  return fmt::format(kScript, stage.name, stage.tasks.size(), quotedWord(chain.folder),
                     quotedWord(chain.workingFolder));
}

std::string submitScript(const JobChain& chain, const SlurmOptions& options) {
  std::string text = kSubmitHead;
  for (const Stage& stage : chain.stages) {
    const Command command = submitCommand(chain, stage, {}, options);
    std::string dependencies = dependencyText(stage, shellVariable);
    if (!dependencies.empty()) dependencies = fmt::format(" \"--dependency={}\"", dependencies);
    const Command before(command.begin(), command.end() - 1);
    text += fmt::format("{}=$({}{} {})\n", stage.name, shellLine(before), dependencies,
                        quotedWord(command.back()));
    text += fmt::format("echo \"{}: job ${}\"\n", stage.name, stage.name);
  }
  return text;
}

std::vector<JobFile> jobFiles(const JobChain& chain, const SlurmOptions& options) {
  std::vector<JobFile> files;
  for (const Stage& stage : chain.stages) {
    files.push_back({stage.name + ".tasks", taskList(stage)});
    files.push_back({stage.name + ".sh", stageScript(chain, stage)});
  }
  files.push_back({"submit.sh", submitScript(chain, options)});
  return files;
}

void writeJobFiles(const JobChain& chain, const SlurmOptions& options) {
  const std::filesystem::path folder = chain.folder;
  for (const Stage& stage : chain.stages) std::filesystem::create_directories(folder / stage.name);
  for (const JobFile& file : jobFiles(chain, options))
    formats::writeTextFile((folder / file.name).string(), file.text);
}

}  // namespace cluster
