// A whole session: workspace, plug-in, one run, what came of it.
#ifndef TAVMAP_HOST_SESSION_H
#define TAVMAP_HOST_SESSION_H

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "host/front_end.h"
#include "host/log_pane.h"
#include "host/plugin_run.h"
#include "host/run.h"
#include "host/workspace.h"

namespace host {

// Empty paths: not given.
struct SessionOptions {
  std::string pluginPath;
  std::string anatomyPath, vtcPath, voisPath, voiTablePath, protocolPath;
  std::string pluginsFolder;  // empty: the plug-in's folder
  HostVersion version;
  std::optional<std::int64_t> seed;  // stands for the wall-clock second
  std::string logPath;
  bool quiet = false;  // no log pane, no introduction, no summary
};

// "2.1.0"; none when the text is no version.
[[nodiscard]] std::optional<HostVersion> parseVersion(const std::string& text);

// Opens what the options name, the protocol after the VTC whose repetition time it needs. Remarks
// go to the log. Throws formats::FileError, or RunEnded (bad input) for a VTC, VOIs or a protocol
// without an anatomy.
void openWorkspace(const SessionOptions& options, Workspace& workspace, LogPane& logPane);

// Opens the workspace, runs the plug-in once, loads the last saved map set back and prints a
// summary of its maps to `out`. One message about a failure goes to `err`. Returns the exit code.
[[nodiscard]] int runSession(const SessionOptions& options, FrontEnd& frontEnd, std::ostream& out,
                             std::ostream& err);

}  // namespace host

#endif
