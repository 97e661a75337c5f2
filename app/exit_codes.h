// How the program ends, the same for every verb.
#ifndef TAVMAP_APP_EXIT_CODES_H
#define TAVMAP_APP_EXIT_CODES_H

#include <stdexcept>

namespace app {

enum ExitCode : int { kDone = 0, kFailed = 1, kWrongInput = 2, kInterrupted = 130 };

// A contradiction among arguments that are well-formed one by one: exit code 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Thrown by a verb that has told the user what went wrong itself.
struct Reported {
  int exitCode;
};

}  // namespace app

#endif
