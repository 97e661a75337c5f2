// What is kept of a request beside its results, for reports and for whoever wants to repeat it.
#ifndef TAVMAP_STUDY_KEPT_REQUEST_H
#define TAVMAP_STUDY_KEPT_REQUEST_H

#include "study/study_run.h"

namespace study {

// PREFIX_request.toml: the request with the seed in use, and paths relative to the output folder, in which it
// lies. Throws formats::FileError.
void keepRequest(const StudyPlan& plan);

// PREFIX_desc-failures_tavmap.tsv: references that could not be computed, and why; removed when there is
// none. Throws formats::FileError.
void keepFailures(const StudyPlan& plan, const StudyOutcome& outcome);

// failures_tavmap.tsv in the folder of a data set: requests that failed as a whole. `titles`: all that were
// asked for; what the table says of others stays. Removed when nothing is left in it.
void keepRequestFailures(const std::filesystem::path& folder, const std::vector<std::string>& titles,
                         const StudyOutcome& outcome);

}  // namespace study

#endif
