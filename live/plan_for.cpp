// From what a person points at to the plan and the request of a run.
#include <fmt/core.h>

#include <algorithm>

#include "live/engine.h"
#include "request/problem.h"
#include "results/output_names.h"

namespace live {
namespace {

template <class Conditions>
std::size_t indexOfCondition(const Conditions& conditions, const std::string& name) {
  const auto found =
      std::find_if(conditions.begin(), conditions.end(), [&](const auto& one) { return one.name == name; });
  if (found == conditions.end())
    throw study::InputError(
        fmt::format("there is no condition '{}'; choose one of those that are listed", name));
  return static_cast<std::size_t>(found - conditions.begin());
}

template <class Element>
void keepOnly(std::size_t index, std::vector<Element>& list) {
  Element kept = std::move(list[index]);
  list.clear();
  list.push_back(std::move(kept));
}

// Random numbers of a reference go on from condition to condition, so that a request has the one that is
// shown.
study::Request askedRequest(const LoadedStudy& study, const Ask& ask) {
  study::Request request = study.plan.request;
  keepOnly(indexOfCondition(request.conditions, ask.condition), request.conditions);
  request.references = {entryOf(ask.reference, study.atlasOrNone(), study.plan.space.grid)};
  request.settings.orderChoice = study::OrderChoice::kFixed;
  request.settings.order = ask.order;
  request.settings.nullDraws = ask.draws;
  request.settings.mapTypes = ask.types;
  request.seed = study.plan.seed;
  return request;
}

}  // namespace

study::StudyPlan planFor(const LoadedStudy& study, const Ask& ask) {
  study::StudyPlan plan = study.plan;
  plan.request = askedRequest(study, ask);
  plan.regions = {regionOf(ask.reference, study.atlasOrNone(), plan.space)};
  plan.regionLabels = study::labelsOf({plan.regions[0].name}, "references", plan.request.title);
  study::settleOrder(plan, ask.order);
  return plan;
}

study::Request requestFor(const LoadedStudy& study, const Ask& ask, const std::string& name) {
  study::Request request = askedRequest(study, ask);
  request.title = name;
  return request;
}

}  // namespace live
