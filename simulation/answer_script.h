// Answers to the plug-in's dialogs, for a scripted session under the stand-in host.
#ifndef TAVMAP_SIMULATION_ANSWER_SCRIPT_H
#define TAVMAP_SIMULATION_ANSWER_SCRIPT_H

#include <string>
#include <vector>

#include "formats/protocol.h"

namespace simulation {

struct SessionRun {
  std::string vtc, protocol;  // relative to the script
  int volumes = 0;
  formats::Protocol design;
};

// The first VOI as reference, one condition "whole" of every run from its first volume to its last.
[[nodiscard]] std::string wholeRunAnswers(const std::vector<SessionRun>& runs, const std::string& prefix);

// The first VOI as reference, one condition of the protocol blocks of that name in every run.
// Precondition: every design has it.
[[nodiscard]] std::string protocolAnswers(const std::vector<SessionRun>& runs, const std::string& condition,
                                          const std::string& prefix);

}  // namespace simulation

#endif
