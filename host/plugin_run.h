// One run of a plug-in: load, create, initialise, execute, destroy.
#ifndef TAVMAP_HOST_PLUGIN_RUN_H
#define TAVMAP_HOST_PLUGIN_RUN_H

#include <functional>
#include <string>

#include "host/plugin_library.h"
#include "host/run.h"

namespace host {

struct RunOutcome {
  int exitCode;
  std::string message;  // empty when all went well
};

// Never throws for what the plug-in does: every exception that leaves it, and every end of the
// run from inside a dialog, comes back as an outcome, with the plug-in object destroyed and the
// library closed. `introduce` is called with the loaded library before the plug-in is created.
[[nodiscard]] RunOutcome runPlugin(const std::string& path, Workspace& workspace, FrontEnd& frontEnd,
                                   LogPane& logPane, const HostIdentity& identity,
                                   const std::function<void(const PluginLibrary&)>& introduce);

}  // namespace host

#endif
