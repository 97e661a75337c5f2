#include "study/data_warnings.h"

#include <fmt/core.h>

#include <algorithm>

#include "prepare/cautions.h"
#include "results/results.h"
#include "study/voxel_sample.h"
#include "suitability/warnings.h"

namespace study {
namespace {

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += fmt::format("{}'{}'", text.empty() ? "" : ", ", name);
  return text;
}

suitability::SuitabilityInput inputOf(const ConditionRun& run, const std::string& reference, int order) {
  suitability::SuitabilityInput input;
  input.run = run.name;
  input.reference = reference;
  input.trSeconds = run.plan->volumes.trSeconds;
  input.order = order;
  input.intervals = run.intervals<suitability::Interval>();
  input.referenceSeries = run.reference;
  input.droppedVolumes = run.plan->volumes.dropped;
  input.filtered = !knownFilters(run.plan->request, run.plan->filters).empty();
  input.highPassed = input.filtered || isHighPassed(run.plan->confoundNames);
  input.confoundRank = run.plan->confoundRank;
  return input;
}

}  // namespace

void DataWarnings::add(const std::string& condition, const std::vector<std::string>& texts) {
  conditions_.push_back(condition);
  for (const std::string& text : texts) {
    const auto known =
        std::find_if(texts_.begin(), texts_.end(), [&](const auto& entry) { return entry.first == text; });
    if (known == texts_.end())
      texts_.push_back({text, {condition}});
    else if (known->second.back() != condition)
      known->second.push_back(condition);
  }
}

std::vector<std::string> DataWarnings::texts() const {
  std::vector<std::string> texts;
  for (const auto& [text, whose] : texts_) {
    const bool isPlain = whose.size() == conditions_.size() || text.starts_with("condition '");
    texts.push_back(
        isPlain ? text
                : fmt::format("{} (condition{} {})", text, whose.size() == 1 ? "" : "s", listed(whose)));
  }
  return texts;
}

ConditionFindings lookAtCondition(const StudyPlan& plan, const std::string& reference,
                                  const std::string& condition, std::vector<ConditionRun>& runs,
                                  const std::vector<std::uint8_t>& codes) {
  const std::vector<std::size_t> sample = sampleOf(codes, {StatusCode::kComputed});
  ConditionFindings found;
  std::vector<suitability::SuitabilityInput> inputs;
  for (ConditionRun& run : runs) {
    inputs.push_back(inputOf(run, reference, plan.order));
    std::vector<std::vector<float>> voxels;
    for (const std::size_t voxel : sample) voxels.push_back(run.voxel(voxel));
    inputs.back().voxels.assign(voxels.begin(), voxels.end());
    found.runs.push_back(suitability::findingsOf(inputs.back()));
    for (std::string& text : suitability::runWarnings(inputs.back(), found.runs.back()))
      found.warnings.push_back(std::move(text));
    inputs.back().voxels.clear();
  }
  const std::string few = suitability::fewSamplesWarning(condition, inputs);
  if (!few.empty()) found.warnings.push_back(few);
  return found;
}

}  // namespace study
