// How a piece of code ended a run.
#ifndef TAVMAP_TESTS_HOST_ENDING_H
#define TAVMAP_TESTS_HOST_ENDING_H

#include "host/run_ended.h"

namespace host_test {

// The RunEnded that `body` throws; exit code -1 when it returns.
template <typename Body>
host::RunEnded endingOf(Body body) {
  try {
    body();
  } catch (const host::RunEnded& end) {
    return end;
  }
  return {-1, "returned"};
}

}  // namespace host_test

#endif
