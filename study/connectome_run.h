// The connectome of a request: every reference with every reference.
#ifndef TAVMAP_STUDY_CONNECTOME_RUN_H
#define TAVMAP_STUDY_CONNECTOME_RUN_H

#include <filesystem>

#include "connectome/connectome_record.h"
#include "request/request.h"
#include "study/study_run.h"

namespace study {

struct ConnectomeOutcome {
  StudyOutcome preparation;  // of imports and the model order; when it failed there is nothing else
  bool kept = false;         // finished before, not computed again
  std::filesystem::path recordFile;
  connectome::Record record;
};

// Imports runs in worker processes as runStudy() does, then computes in this process on options.jobs threads.
// Files appear whole, the record (PREFIX_connectome.json) last; one with the same key is kept. Throws
// InputError: method "plugin", pairs of runs, fewer than two regions, an unknown name in condition_on, too
// few volumes for "all others", a record of another request in the way without options.force (which says what
// differs); formats::FileError, also when another process is at it; Interrupted.
[[nodiscard]] ConnectomeOutcome runConnectome(const Request& request, StudyOptions options,
                                              ProgressBar& progress);

}  // namespace study

#endif
