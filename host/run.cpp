#include "host/run.h"

#include <stdexcept>

namespace host {
namespace {

Run* activeRun = nullptr;

}  // namespace

Run::Run(Workspace& workspace, FrontEnd& frontEnd, LogPane& logPane, const HostIdentity& identity)
    : workspace_(workspace), frontEnd_(frontEnd), logPane_(logPane), identity_(identity) {
  if (activeRun != nullptr) throw std::logic_error("a plug-in run is active already");
  activeRun = this;
}

Run::~Run() {
  activeRun = nullptr;
}

bool Run::isActive() {
  return activeRun != nullptr;
}

Run& Run::active() {
  if (activeRun == nullptr) throw std::logic_error("no plug-in run is active");
  return *activeRun;
}

void Run::remember(const RunEnded& end) {
  if (!ended_) ended_ = end;
}

}  // namespace host
