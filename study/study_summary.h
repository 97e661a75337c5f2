// What a study brought, for a person at a terminal and for programs.
#ifndef TAVMAP_STUDY_STUDY_SUMMARY_H
#define TAVMAP_STUDY_STUDY_SUMMARY_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>

#include "study/study_run.h"

namespace study {

// Per reference, condition and map: how many voxels outside the reference reach the threshold of
// each q-value, in words when none does, and the peak, and what passes at a family-wise error rate of 0.05;
// then warnings and what was not computed. That something failed is said at once, by ProgressBar::fail().
// Of many references a table with a line each (summary_table.h).
void printSummary(const StudyOutcome& outcome, std::ostream& out);

nlohmann::ordered_json summaryJson(const StudyOutcome& outcome, const std::string& version);

}  // namespace study

#endif
