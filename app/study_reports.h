// The reports that verbs running studies write at their end.
#ifndef TAVMAP_APP_STUDY_REPORTS_H
#define TAVMAP_APP_STUDY_REPORTS_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "study/study_run.h"

namespace app {

struct StudyReports {
  std::vector<std::string> pages;     // paths; of a data set its index last
  std::vector<std::string> failures;  // in words; told on the error stream already
};

// The page of every request that left anything, and the index of a data set. A page that cannot be written is
// a failure among others: the results are there.
[[nodiscard]] StudyReports writeReports(const std::vector<study::Request>& requests,
                                        const study::StudyOptions& options);

// "Report: PATH"; of many pages where their index is.
void printReports(const StudyReports& reports, std::ostream& out);
// The summary with their paths.
[[nodiscard]] nlohmann::ordered_json withReports(nlohmann::ordered_json summary, const StudyReports& reports);

}  // namespace app

#endif
