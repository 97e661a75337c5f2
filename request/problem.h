// The two ways in which a study ends early. Both carry one complete message: what failed, which
// file, why, what to do. Whoever drives the study prints it and turns it into an exit code.
#ifndef TAVMAP_REQUEST_PROBLEM_H
#define TAVMAP_REQUEST_PROBLEM_H

#include <stdexcept>

namespace study {

// What was asked for cannot be done: unknown keys, labels, files, contradictory settings. Exit code 2.
struct InputError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What was asked for is fine and failed all the same: a full disk, a dead worker. Exit code 1.
struct RunError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The user interrupted. Exit code 130.
struct Interrupted : std::runtime_error {
  Interrupted() : std::runtime_error("interrupted") {}
};

}  // namespace study

#endif
