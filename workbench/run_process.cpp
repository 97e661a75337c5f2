#include "workbench/run_process.h"

#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "request/problem.h"
#include "study/progress_bar.h"

namespace workbench {
namespace {

std::vector<std::string> wordsOf(const RunCommand& command, const RunEntry& entry) {
  return {command.program,
          "run",
          entry.request.string(),
          "--jobs",
          std::to_string(command.jobs),
          "--report-to",
          std::to_string(study::kReportDescriptor)};
}

constexpr int kInterruptedCode = 130;  // of the program
constexpr std::string_view kProgramPrefix = "tavmap: ";

// The program's last words.
std::string reasonIn(const std::filesystem::path& log, const std::string& end) {
  const std::vector<std::string> lines = lastLines(log, 1);
  if (lines.empty()) return fmt::format("The run {}.", end);
  const std::string& line = lines.front();
  return line.starts_with(kProgramPrefix) ? line.substr(kProgramPrefix.size()) : line;
}

}  // namespace

RunProcess::RunProcess(const RunCommand& command, const RunEntry& entry)
    : process_(wordsOf(command, entry), entry.log.string()) {}

bool RunProcess::listen(RunEntry& entry) {
  char bytes[4096];
  const ssize_t count = read(reports(), bytes, sizeof bytes);
  if (count < 0 && errno == EINTR) return true;
  if (count <= 0) {
    finish(entry);
    return false;
  }
  messages_.take({bytes, static_cast<std::size_t>(count)});
  try {
    takeMessages(entry);
  } catch (const study::RunError&) {  // no message of ours: nothing that comes can be believed
    process_.kill();
  }
  return true;
}

void RunProcess::takeMessages(RunEntry& entry) {
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
  while (const auto message = messages_.next()) {
    if (message->word != study::WorkerWord::kProgress) continue;
    entry.progress = std::clamp(std::strtod(message->text.c_str(), nullptr), 0.0, 1.0);
    entry.secondsLeft = study::secondsLeft(entry.progress, elapsed.count());
  }
}

void RunProcess::end(RunState becomes) {
  ended_ = becomes;
  process_.terminate();
}

// A run that was finished before it could be ended is done all the same. Ctrl-C at a terminal reaches it
// before it is told to end.
void RunProcess::finish(RunEntry& entry) {
  const std::string end = process_.wait();
  const bool isDone = process_.exitCode() == 0;
  const bool wasInterrupted = process_.exitCode() == kInterruptedCode;
  entry.secondsLeft.reset();
  entry.message.clear();
  entry.state =
      isDone ? RunState::kDone : ended_.value_or(wasInterrupted ? RunState::kInterrupted : RunState::kFailed);
  if (isDone) entry.progress = 1;
  if (entry.state == RunState::kFailed) entry.message = reasonIn(entry.log, end);
}

}  // namespace workbench
