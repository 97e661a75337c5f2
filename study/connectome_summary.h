// What `tavmap connectome` says at its end.
#ifndef TAVMAP_STUDY_CONNECTOME_SUMMARY_H
#define TAVMAP_STUDY_CONNECTOME_SUMMARY_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>

#include "study/connectome_run.h"

namespace study {

void printConnectome(const ConnectomeOutcome& outcome, std::ostream& out);
// The record, whether it was kept and its file.
[[nodiscard]] nlohmann::ordered_json connectomeSummaryJson(const ConnectomeOutcome& outcome);

}  // namespace study

#endif
