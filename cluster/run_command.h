// A command run to its end, with all that it says.
#ifndef TAVMAP_CLUSTER_RUN_COMMAND_H
#define TAVMAP_CLUSTER_RUN_COMMAND_H

#include <string>

#include "cluster/shell_words.h"

namespace cluster {

struct Answer {
  int exitCode = 0;  // 127: there is no such program; 128 + signal when one ended it
  std::string out, err;
};

// The program is searched for in PATH and reads nothing. Throws std::runtime_error when no process can be
// made.
[[nodiscard]] Answer run(const Command& command);

}  // namespace cluster

#endif
