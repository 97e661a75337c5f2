// A run of a request as pages see it, and as it is kept for the next start.
#ifndef TAVMAP_WORKBENCH_RUN_ENTRY_H
#define TAVMAP_WORKBENCH_RUN_ENTRY_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace workbench {

enum class RunState { kQueued, kRunning, kDone, kFailed, kCancelled, kInterrupted };

struct RunEntry {
  int id = 0;
  std::string title;
  std::filesystem::path request;       // absolute
  std::filesystem::path outputFolder;  // absolute
  std::string outputName;              // prefix of its files
  RunState state = RunState::kQueued;
  double progress = 0;  // 0 to 1
  std::optional<double> secondsLeft;
  std::string message;         // how it ended, when it did not end well
  std::filesystem::path log;   // what it said

  [[nodiscard]] bool isActive() const { return state == RunState::kQueued || state == RunState::kRunning; }
};

[[nodiscard]] const char* nameOf(RunState state);

// For the file. The other way round throws formats::FileError for what is no such list.
[[nodiscard]] nlohmann::ordered_json keptJson(const RunEntry& entry);
[[nodiscard]] std::vector<RunEntry> entriesFromText(const std::string& text, const std::string& path);

// The last lines of a text file, without empty ones; none when it cannot be read.
[[nodiscard]] std::vector<std::string> lastLines(const std::filesystem::path& file, std::size_t most);

}  // namespace workbench

#endif
