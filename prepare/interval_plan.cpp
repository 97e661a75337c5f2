#include "prepare/interval_plan.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "prepare/effective_volumes.h"
#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {
namespace {

using Ranges = std::vector<VolumeRange>;

class Planner {
 public:
  Planner(const ConditionRequest& condition, const std::vector<RunVolumes>& runs, int order,
          std::string where)
      : condition_(condition),
        runs_(runs),
        order_(order),
        begin_(fmt::format("{}: condition '{}'", where, condition.name)) {}

  PlannedCondition plan();

 private:
  const RunVolumes& run(const std::string& name) const;
  void checkTrialTypes() const;
  Ranges wanted(const ConditionPart& part, const RunVolumes& source) const;
  Ranges typed(const ConditionPart& part, const RunVolumes& source) const;
  Ranges usable(const Ranges& wanted, const RunVolumes& source, const RunVolumes& target);
  void note(const std::string& text) {
    planned_.notes.push_back(fmt::format("condition '{}': {}", condition_.name, text));
  }
  int least() const { return std::max(condition_.minimumVolumes, leastVolumes(order_)); }

  const ConditionRequest& condition_;
  const std::vector<RunVolumes>& runs_;
  int order_;
  std::string begin_;
  PlannedCondition planned_;
};

const RunVolumes& Planner::run(const std::string& name) const {
  const auto found =
      std::find_if(runs_.begin(), runs_.end(), [&](const RunVolumes& r) { return r.name == name; });
  if (found == runs_.end())
    throw InputError(fmt::format("{} names no run of this request: '{}'", begin_, name));
  return *found;
}

// A type may be missing in some runs, not in all.
void Planner::checkTrialTypes() const {
  std::set<std::string> types;
  for (const ConditionPart& part : condition_.parts) {
    for (const std::string& type : trialTypesOf(run(part.source).events)) types.insert(type);
  }
  const std::vector<std::string> known(types.begin(), types.end());
  for (const std::string& type : condition_.trialTypes) {
    if (types.count(type) == 0) {
      throw InputError(
          fmt::format("{}: no event of trial_type '{}'{}", begin_, type, suggestion(type, known)));
    }
  }
}

Ranges Planner::typed(const ConditionPart& part, const RunVolumes& source) const {
  const Ranges& ranges = part.typed.empty() ? condition_.typed : part.typed;
  for (const VolumeRange& range : ranges) {
    const std::string text = fmt::format("interval {} to {}", range.first, range.last);
    if (range.last > source.volumes) {
      throw InputError(fmt::format("{}: {} ends outside run '{}', which has {} volumes", begin_, text,
                                   source.name, source.volumes));
    }
    if (length(range) <= order_) {
      throw InputError(fmt::format("{}: {} is too short; a model of order {} needs more than {} volumes",
                                   begin_, text, order_, order_));
    }
  }
  return ranges;
}

Ranges Planner::wanted(const ConditionPart& part, const RunVolumes& source) const {
  switch (condition_.kind) {
    case IntervalKind::kTyped:
      return typed(part, source);
    case IntervalKind::kWholeRun:
      return {{1, source.volumes}};
    case IntervalKind::kEvents:
      break;
  }
  const BlockSettings settings{condition_.trialTypes, condition_.delaySeconds,
                               condition_.joinGapSeconds.value_or(source.trSeconds)};
  return eventBlocks(source.events, settings, source.trSeconds, source.volumes);
}

// Short pieces are left out; a typed interval that nothing was taken from stays, however short.
Ranges Planner::usable(const Ranges& wanted, const RunVolumes& source, const RunVolumes& target) {
  const Ranges inTarget = intersect(wanted, {{1, target.volumes}});
  Ranges pieces = intersect(intersect(inTarget, source.kept), target.kept);
  const int lost = totalLength(inTarget) - totalLength(pieces);
  if (lost > 0) {
    note(fmt::format("run '{}': {} of {} volumes dropped or censored", source.name, lost,
                     totalLength(inTarget)));
  }
  const bool untouched =
      condition_.kind == IntervalKind::kTyped && lost == 0 && condition_.minimumVolumes == 0;
  if (untouched) return pieces;
  const Ranges longEnough = dropShort(pieces, least());
  if (longEnough.size() < pieces.size()) {
    note(fmt::format("run '{}': {} of {} intervals left out, shorter than {} volumes", source.name,
                     pieces.size() - longEnough.size(), pieces.size(), least()));
  }
  return longEnough;
}

PlannedCondition Planner::plan() {
  planned_.name = condition_.name;
  if (condition_.kind == IntervalKind::kEvents) checkTrialTypes();
  for (const ConditionPart& part : condition_.parts) {
    const RunVolumes& source = run(part.source);
    const RunVolumes& target = run(part.target);
    const Ranges ranges = usable(wanted(part, source), source, target);
    if (ranges.empty()) continue;
    // Of a pair the run counts that lost more.
    const double cost = std::max(source.costPerVolume, target.costPerVolume);
    const int effective = effectiveAfterRegression(ranges, order_, cost);
    planned_.totalVolumes += totalLength(ranges);
    planned_.effectiveVolumes += effective;
    planned_.sets.push_back({part.source, part.target, ranges, effective});
  }
  if (planned_.sets.empty()) {
    std::string reasons;
    for (const std::string& text : planned_.notes) reasons += fmt::format(" ({})", text);
    throw InputError(
        fmt::format("{}: no interval of at least {} volumes is left{}; censor less, ask for shorter "
                    "intervals or a lower order, or leave the condition out",
                    begin_, least(), reasons));
  }
  return std::move(planned_);
}

}  // namespace

int leastVolumes(int order) {
  return order + 3;
}

PlannedCondition planCondition(const ConditionRequest& condition, const std::vector<RunVolumes>& runs,
                               int order, const std::string& where) {
  return Planner(condition, runs, order, where).plan();
}

}  // namespace study
