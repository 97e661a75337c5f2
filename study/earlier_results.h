// What an output folder holds under the names of a request already: results of the same request are
// kept, those of another are never overwritten unasked.
#ifndef TAVMAP_STUDY_EARLIER_RESULTS_H
#define TAVMAP_STUDY_EARLIER_RESULTS_H

#include <string>
#include <vector>

#include "results/record.h"
#include "study/study_plan.h"

namespace study {

// An order that a criterion will choose is not known before the data are read.
enum class OrderIs { kSettled, kAsThere };

// Throws InputError, naming results and what differs, when the folder of one of the plans has results
// under its names that were made by another request. A record that is not whole vouches for nothing and
// is no obstacle. kAsThere: with an order criterion the order of the record is taken for the one that
// will be found.
void refuseOtherRequests(const std::vector<StudyPlan>& plans, OrderIs order = OrderIs::kAsThere);

// A result under the prefix of a request, of a reference that the request does not have.
struct ForeignResult {
  std::string file;  // its record, in the output folder
  Record record;
};
[[nodiscard]] std::vector<ForeignResult> foreignResults(const StudyPlan& plan);

// Says which there are, and that they stay; empty when there are none.
[[nodiscard]] std::string foreignResultsCaution(const StudyPlan& plan);
// Removes them. Says which there were; empty when there were none. Throws RunError.
[[nodiscard]] std::string removeForeignResults(const StudyPlan& plan);

}  // namespace study

#endif
