#include "workbench/run_desk.h"

#include <fmt/core.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "request/problem.h"
#include "workbench/exchange.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;

constexpr int kBetweenLooksMs = 100;

fs::path listIn(const fs::path& folder) {
  return folder / "workbench_runs.json";
}

std::vector<RunEntry> keptIn(const fs::path& folder) {
  const std::string path = listIn(folder).string();
  std::error_code ignored;
  if (!fs::exists(path, ignored)) return {};
  std::vector<RunEntry> entries = entriesFromText(formats::readTextFile(path), path);
  for (RunEntry& entry : entries)
    if (entry.isActive()) entry.state = RunState::kInterrupted;
  return entries;
}

int firstFreeId(const std::vector<RunEntry>& entries) {
  int id = 0;
  for (const RunEntry& entry : entries) id = std::max(id, entry.id);
  return id + 1;
}

bool isWaiting(const RunEntry& entry) {
  return entry.state == RunState::kQueued;
}

// Ended runs make room, the oldest first.
void dropOldest(std::vector<RunEntry>& entries) {
  if (entries.size() < RunDesk::kMostKept) return;
  const auto ended = std::find_if(entries.begin(), entries.end(), [](const auto& e) { return !e.isActive(); });
  if (ended == entries.end()) throw Refusal(429, "Too many runs wait. Start this one when some have ended.");
  entries.erase(ended);
}

}  // namespace

RunDesk::RunDesk(fs::path workFolder, RunCommand command, Changed changed)
    : folder_(std::move(workFolder)),
      command_(std::move(command)),
      changed_(std::move(changed)),
      entries_(keptIn(folder_)),
      thread_([this] { work(); }) {}

RunDesk::~RunDesk() {
  stop();
}

std::vector<RunEntry> RunDesk::runs() const {
  const std::lock_guard lock(mutex_);
  return entries_;
}

RunEntry& RunDesk::entryOf(int id) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [id](const auto& e) { return e.id == id; });
  if (found == entries_.end()) throw Refusal(404, fmt::format("There is no run {} here.", id));
  return *found;
}

// What cannot be kept is said, and the runs go on.
void RunDesk::save() const {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const RunEntry& entry : entries_) list.push_back(keptJson(entry));
  formats::writeTextFile(listIn(folder_).string(), nlohmann::ordered_json{{"runs", list}}.dump(2) + "\n",
                         formats::Durability::kCached);
}

void RunDesk::changedTo(const RunEntry& entry) {
  changed_(entry);
  try {
    save();
  } catch (const formats::FileError& error) {
    RunEntry told = entry;
    told.message = error.what();
    changed_(told);
  }
}

RunEntry RunDesk::add(const RunEntry& wanted) {
  const std::lock_guard lock(mutex_);
  for (const RunEntry& entry : entries_)
    if (entry.isActive() && entry.request == wanted.request)
      throw Refusal(409, fmt::format("Run {} of this request has not ended. Wait for it, or cancel it.", entry.id));
  dropOldest(entries_);
  RunEntry entry = wanted;
  entry.id = firstFreeId(entries_);
  entry.log = folder_ / fmt::format("workbench_run-{}.log", entry.id);
  std::error_code ignored;
  fs::remove(entry.log, ignored);
  entries_.push_back(entry);
  changedTo(entry);
  return entry;
}

void RunDesk::cancel(int id) {
  const std::lock_guard lock(mutex_);
  RunEntry& entry = entryOf(id);
  if (!entry.isActive()) throw Refusal(409, fmt::format("Run {} has ended already.", id));
  if (const auto process = processes_.find(id); process != processes_.end())
    return process->second->end(RunState::kCancelled);
  entry.state = RunState::kCancelled;
  changedTo(entry);
}

void RunDesk::resume(int id) {
  const std::lock_guard lock(mutex_);
  RunEntry& entry = entryOf(id);
  if (entry.isActive() || entry.state == RunState::kDone)
    throw Refusal(409, fmt::format("Run {} is {}; there is nothing to resume.", id, nameOf(entry.state)));
  entry.state = RunState::kQueued;
  entry.message.clear();
  changedTo(entry);
}

void RunDesk::work() {
  for (;;) {
    {
      const std::lock_guard lock(mutex_);
      if (stopping_ && processes_.empty()) return;
      if (!stopping_) startWaiting();
    }
    listen();
  }
}

void RunDesk::startWaiting() {
  for (RunEntry& entry : entries_) {
    if (!isWaiting(entry) || processes_.size() == kMostAtATime) continue;
    try {
      processes_[entry.id] = std::make_unique<RunProcess>(command_, entry);
      entry.state = RunState::kRunning;
      entry.progress = 0;
    } catch (const study::RunError& error) {
      processes_.erase(entry.id);
      entry.state = RunState::kFailed;
      entry.message = error.what();
    }
    changedTo(entry);
  }
}

void RunDesk::listen() {
  std::vector<pollfd> descriptors;
  std::vector<int> ids;
  for (const auto& [id, process] : processes_) {
    descriptors.push_back({process->reports(), POLLIN, 0});
    ids.push_back(id);
  }
  if (poll(descriptors.data(), descriptors.size(), kBetweenLooksMs) <= 0) return;
  for (std::size_t i = 0; i < ids.size(); ++i)
    if (descriptors[i].revents != 0) hear(ids[i]);
}

void RunDesk::hear(int id) {
  const std::lock_guard lock(mutex_);
  RunEntry& entry = entryOf(id);
  const bool goesOn = processes_.at(id)->listen(entry);
  if (goesOn) return changed_(entry);
  processes_.erase(id);
  changedTo(entry);
}

void RunDesk::stop() {
  {
    const std::lock_guard lock(mutex_);
    if (!stopping_)
      for (const auto& [id, process] : processes_) process->end(RunState::kInterrupted);
    stopping_ = true;
  }
  if (thread_.joinable()) thread_.join();
}

}  // namespace workbench
