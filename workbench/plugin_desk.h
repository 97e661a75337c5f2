// Plug-in sessions, one at a time: the host's operations work on one workspace. The plug-in runs in this
// process, on a thread of its own, as under `tavmap host`.
#ifndef TAVMAP_WORKBENCH_PLUGIN_DESK_H
#define TAVMAP_WORKBENCH_PLUGIN_DESK_H

#include <filesystem>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <thread>
#include <vector>

#include "host/session.h"
#include "workbench/folder_guard.h"
#include "workbench/page_dialogs.h"

namespace workbench {

class PluginDesk {
 public:
  // workFolder: for recorded answers. Borrows folders and news.
  PluginDesk(host::SessionOptions options, std::filesystem::path workFolder, const FolderGuard& folders,
             EventHub& news);
  ~PluginDesk();
  PluginDesk(const PluginDesk&) = delete;
  PluginDesk& operator=(const PluginDesk&) = delete;

  // record: write the answers into a new script in the work folder. Throws Refusal 409 while a session goes
  // on.
  void start(bool record);
  // See PageDialogs::answer.
  void answer(const nlohmann::ordered_json& body) { dialogs_.answer(body); }
  // The session ends at its next question, log line or step. Nothing happens when there is none.
  void end();
  // end(), and waits for it.
  void stop();
  // The image that maps lie on, as it was given at the start; empty: none was.
  [[nodiscard]] std::filesystem::path anatomy() const { return options_.anatomyPath; }
  // Of the dialogs, and {"state": "none|running|ended", "exitCode", "message", "summary", "recorded",
  // "anatomy": whether there is one}.
  [[nodiscard]] nlohmann::ordered_json state() const;

 private:
  void run(const std::string& script);
  [[nodiscard]] std::vector<std::string> picturesOf(const std::string& mapSet) const;

  host::SessionOptions options_;
  std::filesystem::path workFolder_;
  const FolderGuard& folders_;
  EventHub& news_;
  PageDialogs dialogs_;
  mutable std::mutex mutex_;
  std::string state_ = "none", message_, summary_, recorded_;
  int exitCode_ = 0;
  std::thread thread_;
};

}  // namespace workbench

#endif
