// How a result that is there differs from what a request would make, in words.
#ifndef TAVMAP_STUDY_REQUEST_DIFFERENCES_H
#define TAVMAP_STUDY_REQUEST_DIFFERENCES_H

#include <filesystem>
#include <string>
#include <vector>

#include "results/record.h"
#include "study/study_plan.h"

namespace study {

// One text per difference: "number of surrogates: 60 there, 80 now". Settings, seed, version, reference,
// conditions and runs as the record has them; then input files that were changed after `file`, the
// record's. Inputs that differ otherwise (another path, an older time) leave no trace but the key: when
// keys differ and nothing else does, the one text says that. Empty: equal keys.
[[nodiscard]] std::vector<std::string> differencesFrom(const Record& made, const std::filesystem::path& file,
                                                       const StudyPlan& plan, std::size_t region);

}  // namespace study

#endif
