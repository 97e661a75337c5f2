// The connectome of a request and its page, for the verbs that compute some.
#ifndef TAVMAP_APP_CONNECTOME_WORK_H
#define TAVMAP_APP_CONNECTOME_WORK_H

#include <string>
#include <vector>

#include "app/study_options.h"
#include "request/request.h"
#include "study/connectome_run.h"

namespace app {

struct ConnectomeWork {
  study::ConnectomeOutcome outcome;
  std::string page;  // its path; empty without one
};

// Computes it, or keeps it, and writes its page unless none is wanted. Throws as study::runConnectome().
[[nodiscard]] ConnectomeWork makeConnectome(const study::Request& request, const StudyArguments& arguments);

// Those of several requests, one after the other: what cannot be computed is told on the error stream and
// does not stop the others. Returns the exit code; prints where the pages are.
[[nodiscard]] int makeConnectomes(const std::vector<study::Request>& requests,
                                  const StudyArguments& arguments);

}  // namespace app

#endif
