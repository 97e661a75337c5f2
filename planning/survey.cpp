#include "planning/survey.h"

#include <exception>

#include "request/problem.h"
#include "study/reference_job.h"
#include "study/study_seed.h"

namespace planning {
namespace {

using study::StudyPlan;

std::vector<std::size_t> missingOf(const StudyPlan& plan) {
  std::vector<std::size_t> missing;
  for (std::size_t i = 0; i < plan.regions.size(); ++i)
    if (!study::finishedRecord(plan, i)) missing.push_back(i);
  return missing;
}

// What is missing at the order of which most is there.
std::vector<std::size_t> missingAtAnyOrder(const StudyPlan& plan) {
  std::vector<std::size_t> least = missingOf(plan);
  StudyPlan other = plan;
  for (int order = 1; order <= plan.request.settings.maxOrder && !least.empty(); ++order) {
    try {
      study::settleOrder(other, order);
    } catch (const study::InputError&) {  // too few volumes for it, and for all higher ones
      break;
    }
    const std::vector<std::size_t> missing = missingOf(other);
    if (missing.size() < least.size()) least = missing;
  }
  return least;
}

std::vector<std::size_t> missingOf(const StudyPlan& plan, const SurveyOptions& options) {
  if (options.force) {
    std::vector<std::size_t> all(plan.regions.size());
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
    return all;
  }
  const bool fixed = plan.request.settings.orderChoice == study::OrderChoice::kFixed;
  std::vector<std::size_t> missing = fixed ? missingOf(plan) : missingAtAnyOrder(plan);
  // The plug-in's numbers of a reference depend on those before it: all or none.
  const bool together = plan.request.settings.method == study::Method::kPlugin && !missing.empty();
  return together ? missingOf(plan, {.seed = {}, .version = {}, .force = true}) : missing;
}

StudyPlan planOf(const study::Request& request, const SurveyOptions& options) {
  const auto given = options.seed ? options.seed : request.seed;
  StudyPlan plan = study::planStudy(request, given.value_or(0), options.version);
  if (!given)
    plan.seed = options.drawsSeeds ? study::drawnSeed(request) : study::keptSeed(request).value_or(0);
  return plan;
}

std::string beginningWith(const std::string& title, const std::string& text) {
  const std::string begin = title + ": ";
  return text.starts_with(begin) ? text : begin + text;
}

}  // namespace

std::vector<Surveyed> survey(const std::vector<study::Request>& requests, const SurveyOptions& options) {
  std::vector<Surveyed> found;
  for (const study::Request& request : requests) {
    Surveyed one{request, std::nullopt, "", {}};
    try {
      one.plan = planOf(request, options);
      one.missing = missingOf(*one.plan, options);
    } catch (const std::exception& error) {
      one.plan.reset();
      one.problem = beginningWith(request.title, error.what());
    }
    found.push_back(std::move(one));
  }
  return found;
}

}  // namespace planning
