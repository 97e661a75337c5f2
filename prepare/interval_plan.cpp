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

constexpr std::size_t kMostNamed = 5;

std::string textOf(const VolumeRange& range) {
  return fmt::format("interval {} to {}", range.first, range.last);
}

std::string namesOf(const std::vector<TimedEvent>& events) {
  std::string text;
  for (std::size_t i = 0; i < std::min(events.size(), kMostNamed); ++i)
    text += fmt::format("{}'{}' at {:g} s", i == 0 ? "" : ", ", events[i].trialType, events[i].onsetSeconds);
  return events.size() > kMostNamed ? text + " ..." : text;
}

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
  Ranges wanted(const ConditionPart& part, const RunVolumes& source, const RunVolumes& target) const;
  Ranges typed(const ConditionPart& part, const RunVolumes& source, const RunVolumes& target) const;
  void checkTyped(const VolumeRange& range, const RunVolumes& source, const RunVolumes& target) const;
  void requireApart(Ranges ranges) const;
  void requireNewVolumes(const ConditionPart& part, const Ranges& ranges) const;
  [[nodiscard]] BlockSettings blockSettings(const RunVolumes& source) const;
  void noteEvents(const RunVolumes& source);
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

void Planner::checkTyped(const VolumeRange& range, const RunVolumes& source, const RunVolumes& target) const {
  for (const RunVolumes* run : {&source, &target}) {
    if (range.last > run->volumes) {
      throw InputError(fmt::format("{}: {} ends outside run '{}', which has {} volumes", begin_,
                                   textOf(range), run->name, run->volumes));
    }
  }
  if (length(range) < leastVolumes(order_)) {
    throw InputError(fmt::format("{}: {} is too short; a model of order {} needs at least {} volumes", begin_,
                                 textOf(range), order_, leastVolumes(order_)));
  }
}

// A volume of two intervals would count twice.
void Planner::requireApart(Ranges ranges) const {
  std::sort(ranges.begin(), ranges.end(),
            [](const VolumeRange& a, const VolumeRange& b) { return a.first < b.first; });
  const auto overlap =
      std::adjacent_find(ranges.begin(), ranges.end(),
                         [](const VolumeRange& a, const VolumeRange& b) { return b.first <= a.last; });
  if (overlap == ranges.end()) return;
  throw InputError(
      fmt::format("{}: {} and {} overlap, and volumes of both would count twice; join them, or "
                  "end the one before the other begins",
                  begin_, textOf(overlap[0]), textOf(overlap[1])));
}

Ranges Planner::typed(const ConditionPart& part, const RunVolumes& source, const RunVolumes& target) const {
  const Ranges& ranges = part.typed.empty() ? condition_.typed : part.typed;
  for (const VolumeRange& range : ranges) checkTyped(range, source, target);
  requireApart(ranges);
  return ranges;
}

BlockSettings Planner::blockSettings(const RunVolumes& source) const {
  return {condition_.trialTypes, condition_.delaySeconds,
          condition_.joinGapSeconds.value_or(source.trSeconds)};
}

Ranges Planner::wanted(const ConditionPart& part, const RunVolumes& source, const RunVolumes& target) const {
  switch (condition_.kind) {
    case IntervalKind::kTyped:
      return typed(part, source, target);
    case IntervalKind::kWholeRun:
      return {{1, source.volumes}};
    case IntervalKind::kEvents:
      break;
  }
  return eventBlocks(source.events, blockSettings(source), source.trSeconds, source.volumes);
}

void Planner::noteEvents(const RunVolumes& source) {
  if (condition_.kind != IntervalKind::kEvents) return;
  const BlockSettings settings = blockSettings(source);
  const int overlapping = overlappingEvents(source.events, settings.trialTypes);
  if (overlapping > 0) {
    note(fmt::format("run '{}': {} event{} begin{} before another has ended; what they share counts once",
                     source.name, overlapping, overlapping == 1 ? "" : "s", overlapping == 1 ? "s" : ""));
  }
  const std::vector<TimedEvent> outside =
      eventsOutside(source.events, settings, source.trSeconds, source.volumes);
  if (outside.empty()) return;
  note(fmt::format("run '{}': {} event{} before the first or after the last volume {} left out: {}",
                   source.name, outside.size(), outside.size() == 1 ? "" : "s",
                   outside.size() == 1 ? "is" : "are", namesOf(outside)));
}

// The same runs may be named again for other volumes.
void Planner::requireNewVolumes(const ConditionPart& part, const Ranges& ranges) const {
  for (const PlannedSet& set : planned_.sets) {
    const bool same = set.source == part.source && set.target == part.target;
    const Ranges common = same ? intersect(set.ranges, ranges) : Ranges{};
    if (common.empty()) continue;
    throw InputError(fmt::format("{}: run '{}' is named twice, and {} would count twice; name it once",
                                 begin_, part.target, textOf(common[0])));
  }
}

// Pieces that are too short for the model are left out.
Ranges Planner::usable(const Ranges& wanted, const RunVolumes& source, const RunVolumes& target) {
  const Ranges inTarget = intersect(wanted, {{1, target.volumes}});
  Ranges pieces = intersect(intersect(inTarget, source.kept), target.kept);
  const int lost = totalLength(inTarget) - totalLength(pieces);
  if (lost > 0) {
    note(fmt::format("run '{}': {} of {} volumes dropped or censored", source.name, lost,
                     totalLength(inTarget)));
  }
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
    noteEvents(source);
    const Ranges ranges = usable(wanted(part, source, target), source, target);
    if (ranges.empty()) continue;
    requireNewVolumes(part, ranges);
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
