// One plug-in run: what the exported operations work on, and how the run can end early.
//
// Exactly one run is active at a time in a process, since the operations are plain functions.
#ifndef TAVMAP_HOST_RUN_H
#define TAVMAP_HOST_RUN_H

#include <optional>
#include <string>

#include "host/front_end.h"
#include "host/log_pane.h"
#include "host/run_ended.h"

namespace host {

class Workspace;

struct HostVersion {
  int major = 2, minor = 1, patch = 0;
};

// What the host tells a plug-in about itself. Folders are absolute, without a slash at the end.
struct HostIdentity {
  HostVersion version;
  std::string programFolder;
  std::string pluginsFolder;
};

class Run {
 public:
  // Becomes the active run. All arguments must outlive it.
  Run(Workspace& workspace, FrontEnd& frontEnd, LogPane& logPane, const HostIdentity& identity);
  ~Run();
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  // The active run. Throws std::logic_error when there is none.
  static Run& active();
  static bool isActive();

  Workspace& workspace() { return workspace_; }
  FrontEnd& frontEnd() { return frontEnd_; }
  LogPane& logPane() { return logPane_; }
  [[nodiscard]] const HostIdentity& identity() const { return identity_; }

  // The first end is the one that counts: a plug-in that swallows the exception, or that calls
  // the host from destructors while it passes, cannot change it.
  void remember(const RunEnded& end);
  [[nodiscard]] const std::optional<RunEnded>& ended() const { return ended_; }

  // From here on operations refuse instead of throwing.
  void stopThrowing() { mayThrow_ = false; }
  [[nodiscard]] bool mayThrow() const { return mayThrow_; }

 private:
  Workspace& workspace_;
  FrontEnd& frontEnd_;
  LogPane& logPane_;
  const HostIdentity& identity_;
  std::optional<RunEnded> ended_;
  bool mayThrow_ = true;
};

}  // namespace host

#endif
