#include "workbench/workbench.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <thread>

#include "request/request_file.h"
#include "workbench/explore_routes.h"
#include "workbench/plugin_endpoints.h"
#include "workbench/result_endpoints.h"
#include "workbench/run_endpoints.h"
#include "workbench/start_endpoints.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;

void allowFolderOf(const fs::path& file, FolderGuard& folders) {
  if (!file.empty()) folders.allow(fs::absolute(file).parent_path());
}

// So that the request can be run, and its results be seen.
void allowOutputsOf(const fs::path& request, FolderGuard& folders) {
  if (request.empty()) return;
  const study::OutputRequest output = study::readRequestFile(request).output;
  folders.allow(output.folder);
  if (!output.workFolder.empty()) folders.allow(output.workFolder);
}

host::SessionOptions sessionOf(const Sources& sources) {
  host::SessionOptions options;
  options.pluginPath = sources.plugin.plugin.string();
  options.anatomyPath = sources.explore.anatomy.string();
  options.vtcPath = sources.plugin.vtc.string();
  options.voisPath = sources.plugin.vois.string();
  options.protocolPath = sources.plugin.protocol.string();
  return options;
}

ExploreOptions exploreOptions(const Sources& sources) {
  const int threads = static_cast<int>(std::max(std::thread::hardware_concurrency(), 1U));
  return {sources.explore, sources.output, sources.program,
          sources.version, threads,        sources.explore.mostBytes};
}

}  // namespace

Workbench::Workbench(const Sources& sources, int port)
    : server_(port),
      access_(server_.port()),
      claim_(sources.explore.workFolder, "workbench"),
      dispatcher_(routes_, access_) {
  allowFolders(sources);
  openDesks(sources);
  addRoutes(sources);
}

Workbench::~Workbench() {
  stop();
}

// Results first: that is where most files are asked for.
void Workbench::allowFolders(const Sources& sources) {
  for (const fs::path& folder : sources.results) folders_.allow(folder);
  if (!sources.explore.bids.empty()) folders_.allow(sources.explore.bids);
  allowFolderOf(sources.explore.request, folders_);
  allowOutputsOf(sources.explore.request, folders_);
  if (!sources.output.empty()) folders_.allow(sources.output);
  if (!sources.explore.workFolder.empty()) folders_.allow(sources.explore.workFolder);
  for (const fs::path& file : {sources.plugin.vtc, sources.plugin.vois, sources.plugin.protocol})
    allowFolderOf(file, folders_);
  for (const fs::path& folder : sources.folders) folders_.allow(folder);
}

void Workbench::openDesks(const Sources& sources) {
  const fs::path& work = sources.explore.workFolder;
  runs_ = std::make_unique<RunDesk>(work, RunCommand{sources.program, sources.jobs},
                                    [this](const RunEntry& entry) {
                                      runNews_.publish({{"run", runJson(entry, folders_)}});
                                    });
  explore_ = std::make_unique<Explore>(exploreOptions(sources));
  if (!sources.plugin.plugin.empty())
    plugin_ = std::make_unique<PluginDesk>(sessionOf(sources), work, folders_, pluginNews_);
}

void Workbench::addRoutes(const Sources& sources) {
  StartWords words;
  words.version = sources.version;
  words.explore = sources.explore.any();
  words.plugin = !sources.plugin.plugin.empty();
  words.bids = !sources.explore.bids.empty();
  words.ssh = std::getenv("SSH_CONNECTION") != nullptr;
  routes_.add(pageRoutes());
  routes_.add(startRoutes(access_, folders_, words));
  routes_.add(fileRoutes(folders_));
  routes_.add(resultRoutes(folders_, reportKeys_));
  routes_.add(runRoutes(*runs_, runNews_, folders_));
  routes_.add(exploreRoutes(*explore_, folders_));
  if (plugin_) routes_.add(pluginRoutes(*plugin_, pluginNews_));
}

std::string Workbench::address() const {
  return fmt::format("http://127.0.0.1:{}/#token={}", server_.port(), access_.token());
}

void Workbench::start() {
  server_.start(dispatcher_);
}

void Workbench::stop() {
  if (explore_) explore_->stop();
  if (plugin_) plugin_->stop();
  if (runs_) runs_->stop();
  runNews_.close();
  pluginNews_.close();
  server_.stop();
}

}  // namespace workbench
