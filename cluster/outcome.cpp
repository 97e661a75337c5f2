#include "cluster/outcome.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include "cluster/run_command.h"
#include "formats/atomic_file.h"

namespace cluster {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLastLines = 5, kLastBytes = 2000;

using Queue = std::map<std::string, QueuedTask>;  // by JOB_NUMBER

struct QueueAnswer {
  Queue queue;
  std::string caution;
};

QueueAnswer askQueue(const Submission& submission) {
  std::vector<std::string> jobs;
  for (const SubmittedStage& stage : submission.stages) jobs.push_back(stage.job);
  const Answer answer = run(queueCommand(jobs));
  if (answer.exitCode != 0 && !areForgotten(answer.err)) {
    return {{},
            fmt::format("the queue cannot be asked (squeue, exit code {}): {}", answer.exitCode,
                        answer.err.substr(0, answer.err.find('\n')))};
  }
  QueueAnswer found;
  for (const QueuedTask& task : queuedTasks(answer.out))
    found.queue[fmt::format("{}_{}", task.job, task.number)] = task;
  return found;
}

std::string lastLines(const std::string& file) {
  if (!fs::exists(file)) return "";
  std::string text = formats::readTextFile(file);
  text.erase(text.find_last_not_of("\r\n") + 1);
  std::size_t begin = text.size();
  for (std::size_t line = 0; line < kLastLines && begin != std::string::npos && begin > 0; ++line)
    begin = text.rfind('\n', begin - 1);
  if (begin != std::string::npos && begin > 0) text.erase(0, begin + 1);
  return text.size() > kLastBytes ? text.substr(text.size() - kLastBytes) : text;
}

// Of a task that has ended without an exit code: it was killed, or never began.
std::string endOf(const std::string& job, int number) {
  std::string state = rememberedState(run(memoryCommand(job, number)).out);
  if (state.empty()) state = accountedState(run(accountCommand(job, number)).out);
  if (state.empty()) return "it ended without an exit code: killed, or never begun";
  return fmt::format("it ended without an exit code; Slurm says {}", state);
}

std::string whyOf(int code) {
  if (code > 128) return fmt::format("exit code {}: ended by signal {}", code, code - 128);
  return fmt::format("exit code {}", code);
}

void settle(TaskOutcome& task, const std::string& job, const fs::path& base, const QueueAnswer& asked) {
  const auto queued = asked.queue.find(fmt::format("{}_{}", job, task.number));
  const bool isQueued = queued != asked.queue.end() && queued->second.state != "COMPLETING";
  if (isQueued) {
    task.state = queued->second.state == "RUNNING" ? TaskState::kRunning : TaskState::kWaiting;
    task.why = queued->second.reason;
    return;
  }
  const fs::path file = base.string() + ".code";
  int code = 0;
  if (fs::exists(file) && std::istringstream(formats::readTextFile(file.string())) >> code) {
    task.state = code == 0 ? TaskState::kDone : TaskState::kFailed;
    if (code != 0) task.why = whyOf(code);
  } else if (asked.caution.empty()) {
    task.state = TaskState::kFailed;
    task.why = endOf(job, task.number);
  }
  if (task.state == TaskState::kFailed) task.said = lastLines(task.log);
}

void printCounts(const Outcome& outcome, const std::string& stage, std::ostream& out) {
  std::map<TaskState, int> counts;
  for (const TaskOutcome& task : outcome.tasks)
    if (task.stage == stage) ++counts[task.state];
  out << stage << ": ";
  const char* separator = "";
  for (const auto& [state, word] : std::map<TaskState, const char*>{{TaskState::kDone, "done"},
                                                                    {TaskState::kFailed, "failed"},
                                                                    {TaskState::kRunning, "running"},
                                                                    {TaskState::kWaiting, "waiting"}}) {
    if (counts[state] == 0) continue;
    out << separator << counts[state] << " " << word;
    separator = ", ";
  }
  out << "\n";
}

void printFailure(const TaskOutcome& task, std::ostream& out) {
  out << "FAILED: " << task.stage << " " << task.number << " (" << task.name << "): " << task.why << "\n";
  std::istringstream lines(task.said);
  for (std::string line; std::getline(lines, line);) out << "    " << line << "\n";
  out << "    all of it: " << task.log << "\n";
}

}  // namespace

std::size_t Outcome::count(TaskState state) const {
  return static_cast<std::size_t>(std::count_if(
      tasks.begin(), tasks.end(), [&](const TaskOutcome& task) { return task.state == state; }));
}

bool Outcome::isUnderWay() const {
  return count(TaskState::kWaiting) + count(TaskState::kRunning) > 0;
}

Outcome outcomeOf(const Submission& submission) {
  const QueueAnswer asked = askQueue(submission);
  Outcome outcome{{}, asked.caution};
  for (const SubmittedStage& stage : submission.stages) {
    for (std::size_t i = 0; i < stage.tasks.size(); ++i) {
      const int number = static_cast<int>(i) + 1;
      const fs::path base = submission.folder / stage.name / std::to_string(number);
      TaskOutcome task{stage.name, stage.tasks[i],        number, TaskState::kWaiting, "",
                       "",         base.string() + ".err"};
      settle(task, stage.job, base, asked);
      outcome.tasks.push_back(std::move(task));
    }
  }
  return outcome;
}

void printOutcome(const Outcome& outcome, std::ostream& out) {
  std::string last;
  for (const TaskOutcome& task : outcome.tasks) {
    if (task.stage == last) continue;
    printCounts(outcome, last = task.stage, out);
  }
  for (const TaskOutcome& task : outcome.tasks)
    if (task.state == TaskState::kFailed) printFailure(task, out);
  if (!outcome.caution.empty()) out << "WARNING: " << outcome.caution << "; exit codes alone are told\n";
}

}  // namespace cluster
