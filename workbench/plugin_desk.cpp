#include "workbench/plugin_desk.h"

#include <fmt/core.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <system_error>
#include <utility>

#include "host/recording_front_end.h"
#include "inspect/map_pictures.h"
#include "workbench/exchange.h"
#include "workbench/page_front_end.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;

std::string freeScriptIn(const fs::path& folder) {
  std::error_code ignored;
  int number = 1;
  while (fs::exists(folder / fmt::format("plugin_answers-{}.txt", number), ignored)) ++number;
  return (folder / fmt::format("plugin_answers-{}.txt", number)).string();
}

}  // namespace

PluginDesk::PluginDesk(host::SessionOptions options, fs::path workFolder, const FolderGuard& folders,
                       EventHub& news)
    : options_(std::move(options)),
      workFolder_(std::move(workFolder)),
      folders_(folders),
      news_(news),
      dialogs_(news) {}

PluginDesk::~PluginDesk() {
  stop();
}

void PluginDesk::start(bool record) {
  const std::lock_guard lock(mutex_);
  if (state_ == "running") throw Refusal(409, "A session goes on. End it before starting another.");
  if (thread_.joinable()) thread_.join();  // it has said that it ended
  dialogs_.begin();
  state_ = "running";
  message_ = summary_ = "";
  recorded_ = record ? freeScriptIn(workFolder_) : "";
  thread_ = std::thread([this, script = recorded_] { run(script); });
}

std::vector<std::string> PluginDesk::picturesOf(const std::string& mapSet) const {
  inspect::PictureOptions options;
  options.maps = {mapSet};
  options.folder = (workFolder_ / "plugin_pictures").string();
  options.anatomy = options_.anatomyPath;
  return inspect::drawMaps(options);
}

void PluginDesk::run(const std::string& script) {
  std::ostringstream out, err;
  int exitCode = host::kExitFailed;
  try {
    std::unique_ptr<host::FrontEnd> frontEnd = std::make_unique<PageFrontEnd>(
        dialogs_, folders_, [this](const std::string& mapSet) { return picturesOf(mapSet); });
    if (!script.empty()) frontEnd = std::make_unique<host::RecordingFrontEnd>(std::move(frontEnd), script);
    exitCode = host::runSession(options_, *frontEnd, out, err);
  } catch (const host::RunEnded& end) {
    err << end.message;
  } catch (const std::exception& error) {
    err << error.what();
  }
  const std::lock_guard lock(mutex_);
  state_ = "ended";
  exitCode_ = exitCode;
  message_ = err.str();
  summary_ = out.str();
  news_.publish({{"state", "ended"}});
}

void PluginDesk::end() {
  const std::lock_guard lock(mutex_);
  if (state_ == "running") dialogs_.end();
}

void PluginDesk::stop() {
  end();
  if (thread_.joinable()) thread_.join();
}

nlohmann::ordered_json PluginDesk::state() const {
  nlohmann::ordered_json json = dialogs_.state();
  const std::lock_guard lock(mutex_);
  json["state"] = state_;
  json["exitCode"] = exitCode_;
  json["message"] = message_;
  json["summary"] = summary_;
  json["recorded"] = recorded_;
  json["anatomy"] = !options_.anatomyPath.empty();
  return json;
}

}  // namespace workbench
