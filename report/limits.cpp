#include "report/limits.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "results/map_words.h"

namespace report {
namespace {

using study::ConditionRecord;
using study::Record;
using study::RunRecord;

// What the rules look at, gathered over all references and conditions.
struct Facts {
  std::set<double> repetitionTimes;
  std::set<int> orders, effectiveVolumes;
  std::set<std::string> runs;
  std::size_t maps = 0;  // with thresholds
  std::size_t references = 0;
  bool isPlugin = false, hasFamilyWise = false, hasDifference = false, hasConfounds = false,
       hasCensored = false;
  bool hasPassing = false;
  double highPass = 0;
  std::size_t shortestInterval = 0;
  std::size_t intervals = 0;
};

void addRun(const RunRecord& run, Facts& facts) {
  facts.repetitionTimes.insert(run.repetitionTime);
  facts.runs.insert(run.run);
  facts.hasConfounds = facts.hasConfounds || !run.confoundsRegressed.empty();
  facts.hasCensored = facts.hasCensored || run.volumesCensored > 0;
  for (const study::VolumeRange& range : run.intervals) {
    const auto length = static_cast<std::size_t>(range.last - range.first) + 1;
    facts.shortestInterval = facts.intervals == 0 ? length : std::min(facts.shortestInterval, length);
    ++facts.intervals;
  }
}

void addCondition(const ConditionRecord& condition, Facts& facts) {
  facts.effectiveVolumes.insert(condition.effectiveVolumes);
  for (const RunRecord& run : condition.runs) addRun(run, facts);
  for (const study::MapResult& map : condition.maps) {
    facts.maps += map.thresholds.empty() ? 0U : 1U;
    facts.hasFamilyWise = facts.hasFamilyWise || !map.familyWise.empty();
    facts.hasDifference = facts.hasDifference || study::hasSign(map.type);
    for (const study::ThresholdResult& threshold : map.thresholds)
      facts.hasPassing = facts.hasPassing || threshold.outsideReference > 0;
  }
}

Facts factsOf(const std::vector<const Record*>& records) {
  Facts facts;
  for (const Record* record : records) {
    ++facts.references;
    facts.orders.insert(record->model.settings.order);
    facts.highPass = std::max(facts.highPass, record->model.settings.highPass);
    facts.isPlugin = facts.isPlugin || record->model.settings.method == study::Method::kPlugin;
    for (const ConditionRecord& condition : record->conditions) addCondition(condition, facts);
  }
  return facts;
}

void sampling(const Facts& facts, std::vector<Limit>& limits) {
  const double slowest = *facts.repetitionTimes.rbegin();
  const int order = *facts.orders.rbegin();
  std::string words = fmt::format(
      "One step of the models is one repetition time, here {} s, and with order {} they look back {} s. "
      "Neural "
      "influence takes milliseconds: it falls within one step, shows mostly as instantaneous influence, and "
      "some of "
      "it leaks into both directions.",
      slowest, order, slowest * order);
  if (slowest >= 1)
    words +=
        " Slices of one volume are taken at times up to that far apart: correct for slice timing, or "
        "distrust "
        "differences between distant slices.";
  limits.push_back({"Sampling", words});
}

void haemodynamics(const Facts& facts, std::vector<Limit>& limits) {
  if (!facts.hasDifference) return;
  limits.push_back({"Blood vessels",
                    "The signal lags behind neural activity by seconds, and by how much differs from place "
                    "to place, mostly with "
                    "the vessels. A place with a faster response seems to lead one with a slower response, "
                    "whatever the neurons "
                    "do. That is a true lag, and the test with reversed time does not catch it."});
}

void filters(const Facts& facts, std::vector<Limit>& limits) {
  if (facts.highPass > 0)
    limits.push_back(
        {"Filter",
         fmt::format("Cosines slower than {} s were regressed out. Filters mix each volume with its "
                     "neighbours and can bias directed influence: compare the maps without them.",
                     facts.highPass)});
  if (facts.hasConfounds)
    limits.push_back(
        {"Confounds",
         "Confounds were regressed out of the voxels and of the surrogates. What they did not explain of "
         "motion, heartbeat and breathing is still in the maps, and reaches some places earlier than "
         "others."});
  else
    limits.push_back(
        {"No confounds",
         "No confound was regressed out. Motion, heartbeat and breathing that reach one place earlier "
         "than another look exactly like influence."});
}

void samples(const Facts& facts, std::vector<Limit>& limits) {
  if (facts.effectiveVolumes.size() > 1)
    limits.push_back(
        {"Conditions of different length",
         fmt::format("The conditions rest on {} to {} effective volumes. Measures are biased upwards, the "
                     "more the fewer volumes there are: their sizes must not be compared between these "
                     "conditions.",
                     *facts.effectiveVolumes.begin(), *facts.effectiveVolumes.rbegin())});
  if (facts.intervals > 1 && facts.shortestInterval < 30)
    limits.push_back(
        {"Short intervals",
         fmt::format("The shortest of {} intervals has {} volumes. Each gives up as many as the order and "
                     "loses its own mean and trend.",
                     facts.intervals, facts.shortestInterval)});
  if (facts.hasCensored)
    limits.push_back(
        {"Censored volumes",
         "Censoring takes volumes that moved most, not all that moved. What is left may still carry "
         "motion."});
}

void plugin(const Facts& facts, std::vector<Limit>& limits) {
  if (!facts.isPlugin) return;
  limits.push_back(
      {"Method plugin: thresholds",
       "On simulated data without any influence some voxel passes in about half of all runs with "
       "CVConstantForFDR = 1, at any q. A few isolated voxels are no finding."});
  if (*facts.orders.rbegin() > 1)
    limits.push_back(
        {"Method plugin: order 2 and above",
         "From order 2 on the joint models are not those of least squares: with one series driving the "
         "other alone, 58 % of pairs exceed the 99 % null quantile for feedback in the opposite "
         "direction. Do not read direction from these maps."});
}

void multiplicity(const Facts& facts, std::vector<Limit>& limits) {
  if (facts.maps < 2 || !facts.hasPassing) return;
  std::string words = fmt::format(
      "There are {} maps with thresholds here. Every threshold holds for its map alone", facts.maps);
  words += facts.hasFamilyWise ? ", and so do the family-wise p-values" : "";
  limits.push_back(
      {"Several maps",
       words + ": who looks at several maps, conditions or references must correct for their number."});
}

void generality(const Facts& facts, std::vector<Limit>& limits) {
  const std::string what = facts.runs.size() == 1 ? "one run" : fmt::format("{} runs", facts.runs.size());
  limits.push_back(
      {"One participant",
       fmt::format("The maps describe {} of one data set. They say nothing of other sessions or people, "
                   "and are no group statistics.",
                   what)});
}

void direction(const Facts& facts, std::vector<Limit>& limits) {
  if (!facts.hasDifference) return;
  limits.push_back(
      {"Unequal noise",
       facts.isPlugin
           ? "A voxel that carries the reference's signal at the same moment, but with more noise, is mapped "
             "as led by "
             "the reference. Method plugin does not test for it: do not read direction from these maps alone."
           : "A voxel that carries the reference's signal at the same moment, but with more noise, is mapped "
             "as led by "
             "the reference. Speak of direction only where the direction map supports it; about five of a "
             "hundred "
             "voxels without a lead, or fewer, are called supported."});
}

}  // namespace

std::vector<Limit> limitsOf(const std::vector<const Record*>& records) {
  const Facts facts = factsOf(records);
  if (facts.repetitionTimes.empty()) return {};
  std::vector<Limit> limits = {{"Prediction is not causation",
                                "One series leads another when its past improves the prediction. That "
                                "supports a hypothesis of influence and "
                                "does not prove one. A third region or the stimulus that reaches one place "
                                "earlier than the other looks the "
                                "same."}};
  sampling(facts, limits);
  haemodynamics(facts, limits);
  direction(facts, limits);
  filters(facts, limits);
  samples(facts, limits);
  plugin(facts, limits);
  multiplicity(facts, limits);
  generality(facts, limits);
  return limits;
}

}  // namespace report
