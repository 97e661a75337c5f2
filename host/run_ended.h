// How a run ends before the plug-in returns. The exit codes are those of the whole program.
#ifndef TAVMAP_HOST_RUN_ENDED_H
#define TAVMAP_HOST_RUN_ENDED_H

#include <string>

namespace host {

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitBadInput = 2;

// Thrown by the host, through the plug-in, to the host. It is no std::exception on purpose: a
// plug-in that handles its own exceptions must not swallow the end of the run.
struct RunEnded {
  int exitCode;
  std::string message;
};

}  // namespace host

#endif
