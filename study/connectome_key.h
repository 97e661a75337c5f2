// What a connectome is made from, and the key that says so.
#ifndef TAVMAP_STUDY_CONNECTOME_KEY_H
#define TAVMAP_STUDY_CONNECTOME_KEY_H

#include <map>
#include <string>

#include "study/study_plan.h"

namespace study {

// By their names in words: settings as they are, inputs as keys of their own.
[[nodiscard]] std::map<std::string, std::string> connectomeInputs(const StudyPlan& plan);
[[nodiscard]] std::string connectomeKey(const std::map<std::string, std::string>& inputs);
// Names of what differs, "seed, model order (1, was 2)"; empty when nothing does.
[[nodiscard]] std::string inputDifferences(const std::map<std::string, std::string>& now,
                                           const std::map<std::string, std::string>& before);

}  // namespace study

#endif
