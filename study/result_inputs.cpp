#include "study/result_inputs.h"

#include <algorithm>

#include "prepare/input_checksum.h"
#include "results/result_json.h"

namespace study {

std::vector<InputRecord> resultInputs(const StudyPlan& plan, const Region& region) {
  std::vector<InputRecord> inputs;
  std::vector<std::filesystem::path> known;
  const auto add = [&](const char* kind, const std::filesystem::path& file) {
    if (file.empty() || std::find(known.begin(), known.end(), file) != known.end()) return;
    known.push_back(file);
    inputs.push_back({kind, sourceUri(plan.request, file), inputChecksum(file, plan.workFolder)});
  };
  for (const RunPlan& run : plan.runs) {
    add("run image", run.request.bold);
    add("mask", run.request.mask);
    add("events", run.request.events);
    add("confounds", run.request.confounds);
  }
  add(region.source.kind == ReferenceKind::kMask ? "mask" : "label image", region.source.image);
  add("label table", region.source.table);
  return inputs;
}

}  // namespace study
