// An active run for tests that call the exported operations themselves.
#ifndef TAVMAP_TESTS_HOST_ACTIVE_RUN_H
#define TAVMAP_TESTS_HOST_ACTIVE_RUN_H

#include <sstream>
#include <string>

#include "host/run.h"
#include "host/script_front_end.h"
#include "host/workspace.h"
#include "tests/host/ending.h"

namespace host_test {

struct ActiveRun {
  explicit ActiveRun(const std::string& script = "")
      : frontEnd(host::parseScript(script, "s.txt"), log), pane(frontEnd, false) {}

  std::ostringstream log;
  host::ScriptFrontEnd frontEnd;
  host::LogPane pane;
  host::Workspace workspace;
  host::HostIdentity identity{{2, 3, 4}, "/opt/host", "/opt/host/plugins"};
  host::Run run{workspace, frontEnd, pane, identity};
};

// The complaint that a call draws, without the words that every complaint begins with; empty when
// the call is accepted. A run has one end, so each call gets a run of its own.
template <typename Prepare, typename Call>
std::string complaintAbout(Prepare prepare, Call call) {
  ActiveRun active;
  prepare(active.workspace);
  const host::RunEnded end = endingOf(call);
  const std::string beginning = "The plug-in misused the host and was stopped: ";
  if (end.exitCode != host::kExitFailed || end.message.rfind(beginning, 0) != 0) return {};
  const std::string complaint = end.message.substr(beginning.size());
  const bool logged = active.log.str().find("PLUG-IN MISBEHAVIOUR: " + complaint + "\n") != std::string::npos;
  return logged ? complaint : "not logged: " + complaint;
}

}  // namespace host_test

#endif
