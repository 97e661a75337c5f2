#include "host/plugin_run.h"

#include <fmt/core.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>

#include "host/exports.h"

namespace host {
namespace {

// An end of the run cannot pass a plug-in's noexcept function. Then nothing can be cleaned up, but
// the person still learns why.
[[noreturn]] void endWithMessage() {
  const bool known = Run::isActive() && Run::active().ended().has_value();
  std::cerr << "tavmap: " << (known ? Run::active().ended()->message : "the plug-in ended the program")
            << std::endl;
  std::_Exit(known ? Run::active().ended()->exitCode : kExitFailed);
}

class TerminateHandler {
 public:
  TerminateHandler() : previous_(std::set_terminate(endWithMessage)) {}
  ~TerminateHandler() { std::set_terminate(previous_); }
  TerminateHandler(const TerminateHandler&) = delete;
  TerminateHandler& operator=(const TerminateHandler&) = delete;

 private:
  std::terminate_handler previous_;
};

[[noreturn]] void endByException(const char* function, const std::string& what) {
  throw RunEnded{kExitFailed, fmt::format("The plug-in ended {} with an exception ({}). Results that it had "
                                          "not saved are lost; report it to the plug-in's makers.",
                                          function, what)};
}

template <typename Call>
auto guarded(const char* function, Call call) {
  try {
    return call();
  } catch (const RunEnded&) {
    throw;
  } catch (const std::exception& error) {
    endByException(function, error.what());
  } catch (...) {
    endByException(function, "of an unknown kind");
  }
}

// Destroys the plug-in with the host no longer throwing, since destructors must not.
class PluginObject {
 public:
  PluginObject(std::unique_ptr<CNZQPluginInterface> plugin, Run& run)
      : plugin_(std::move(plugin)), run_(run) {}
  ~PluginObject() {
    run_.stopThrowing();
    plugin_.reset();
  }
  PluginObject(const PluginObject&) = delete;
  PluginObject& operator=(const PluginObject&) = delete;
  CNZQPluginInterface* operator->() const { return plugin_.get(); }

 private:
  std::unique_ptr<CNZQPluginInterface> plugin_;
  Run& run_;
};

RunOutcome outcomeOf(bool succeeded, const Run& run, const LogPane& logPane) {
  if (run.ended()) return {run.ended()->exitCode, run.ended()->message};
  if (!succeeded) return {kExitFailed, "The plug-in did not complete its run; its log or message says why."};
  if (logPane.reportedFailure()) return {kExitFailed, "The run reported errors; its log says which."};
  return {kExitDone, {}};
}

}  // namespace

RunOutcome runPlugin(const std::string& path, Workspace& workspace, FrontEnd& frontEnd, LogPane& logPane,
                     const HostIdentity& identity,
                     const std::function<void(const PluginLibrary&)>& introduce) {
  (void)exportedOperations();  // links them in
  Run run(workspace, frontEnd, logPane, identity);
  const TerminateHandler terminateHandler;
  try {
    const PluginLibrary library(path);
    guarded("its description", [&] { introduce(library); });
    const PluginObject plugin(guarded("createPlugin", [&] { return library.create(); }), run);
    if (!guarded("initPlugin", [&] { return plugin->initPlugin(); }))
      return {kExitFailed, "The plug-in refused to start: its initPlugin returned false."};
    const bool succeeded = guarded("execute", [&] { return plugin->execute(); });
    return outcomeOf(succeeded, run, logPane);
  } catch (const RunEnded& end) {
    run.remember(end);
    return {run.ended()->exitCode, run.ended()->message};
  }
}

}  // namespace host
