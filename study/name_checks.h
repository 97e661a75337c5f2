// Names that no file, log or table can have: told before any work.
#ifndef TAVMAP_STUDY_NAME_CHECKS_H
#define TAVMAP_STUDY_NAME_CHECKS_H

#include "study/study_plan.h"

namespace study {

inline constexpr std::size_t kLongestFileName = 255;  // bytes; what file systems of Linux take

// Throws InputError when the prefix or the name of a run, reference or condition has control characters or
// is no UTF-8, or when one of the files that would be written has a longer name than files can have.
// Precondition: conditions and labels are settled.
void requireUsableNames(const StudyPlan& plan);

}  // namespace study

#endif
