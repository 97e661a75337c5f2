// The files that a result was made from, with their checksums.
#ifndef TAVMAP_STUDY_RESULT_INPUTS_H
#define TAVMAP_STUDY_RESULT_INPUTS_H

#include <vector>

#include "results/record.h"
#include "study/study_plan.h"

namespace study {

// Of all runs, each file once, and of the reference. Throws formats::FileError.
[[nodiscard]] std::vector<InputRecord> resultInputs(const StudyPlan& plan, const Region& region);

}  // namespace study

#endif
