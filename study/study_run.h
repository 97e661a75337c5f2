// Runs one or several requests: imports, chooses orders, computes references in worker processes,
// keeps what was finished before.
#ifndef TAVMAP_STUDY_STUDY_RUN_H
#define TAVMAP_STUDY_STUDY_RUN_H

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "request/request.h"
#include "results/record.h"
#include "study/order_evidence.h"
#include "study/progress_bar.h"
#include "study/study_plan.h"

namespace study {

struct StudyOptions {
  std::string program;  // the path of `tavmap`, which does the work: PROGRAM worker JOB
  int jobs = 1;
  // Recompute what is finished, replace results of other requests, remove those of references that a request
  // does not have.
  bool force = false;
  bool stopOnFirstCrash = false;
  bool ordersOnly = false;            // gather evidence for the order and stop there
  bool importsOnly = false;           // import runs, settle the order and stop there
  std::optional<std::uint32_t> seed;  // overrides the requests'
  std::string version;                // of the software, for sidecars and keys
  // What no request could be made for, whose and why in words: failures beside those of the requests.
  std::vector<std::string> withoutRequest;
  std::string datasetFolder;  // where dataset_description.json goes; empty: each request's folder
  // Whether references are computed, and so files of results are written.
  [[nodiscard]] bool computesMaps() const { return !ordersOnly && !importsOnly; }
};

// What became of one reference.
struct ReferenceOutcome {
  std::string request, reference;
  bool done = false, kept = false;  // kept: finished before, not computed again
  std::string message;              // of a failure
  Record record;                    // when done
};

// What a request's data say of the model order.
struct OrderOutcome {
  std::string request;
  OrderEvidence evidence;
};

struct StudyOutcome {
  std::vector<ReferenceOutcome> references;
  std::vector<std::string> failures;  // of requests as a whole, in words
  std::vector<std::string> cautions;
  bool inputProblem = false;         // at least one failure is the request's fault
  std::vector<OrderOutcome> orders;  // one per request that asked for it
  std::vector<StudyPlan> prepared;   // with importsOnly: their runs lie in the work folders
  [[nodiscard]] bool failed() const;
};

// Requests are planned before anything is computed: an InputError in one of them throws at once when
// it is the only one, and is a failure among others otherwise. Results of another request in the way of
// any of them, without `force`, are an InputError before any work; another process at work under the same
// names is a formats::FileError. Throws Interrupted. What workers and killed runs have left in the folders
// is gone at the end, however that comes.
[[nodiscard]] StudyOutcome runStudy(const std::vector<Request>& requests, const StudyOptions& options,
                                    ProgressBar& progress);

}  // namespace study

#endif
