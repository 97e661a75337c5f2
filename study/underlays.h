// Images that pictures and reports draw maps on, once per request, in the output folder: the mean of the
// first volumes, and the anatomy if there is one. No result is made from them, so that no record names them.
#ifndef TAVMAP_STUDY_UNDERLAYS_H
#define TAVMAP_STUDY_UNDERLAYS_H

#include "study/study_plan.h"

namespace study {

// Each with a sidecar. One that is there stays, unless it is older than what it is made from or its sidecar
// says something else. Throws InputError for an anatomy that cannot be read, and formats::FileError.
void writeUnderlays(const StudyPlan& plan);

}  // namespace study

#endif
