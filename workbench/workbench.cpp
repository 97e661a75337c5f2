#include "workbench/workbench.h"

#include <fmt/core.h>

#include <cstdlib>

#include "workbench/start_endpoints.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;

void allowFolderOf(const fs::path& file, FolderGuard& folders) {
  if (!file.empty()) folders.allow(fs::absolute(file).parent_path());
}

}  // namespace

Workbench::Workbench(const Sources& sources, int port)
    : server_(port), access_(server_.port()), dispatcher_(routes_, access_) {
  allowFolders(sources);
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
  if (!sources.explore.workFolder.empty()) folders_.allow(sources.explore.workFolder);
  for (const fs::path& folder : sources.folders) folders_.allow(folder);
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
}

std::string Workbench::address() const {
  return fmt::format("http://127.0.0.1:{}/#token={}", server_.port(), access_.token());
}

void Workbench::start() {
  server_.start(dispatcher_);
}

void Workbench::stop() {
  server_.stop();
}

}  // namespace workbench
