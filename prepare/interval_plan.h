// From a condition's request to the intervals that the engine pools: whole runs, typed intervals or
// blocks of events, without dropped and censored volumes, none shorter than a model needs.
#ifndef TAVMAP_PREPARE_INTERVAL_PLAN_H
#define TAVMAP_PREPARE_INTERVAL_PLAN_H

#include <string>
#include <vector>

#include "prepare/event_blocks.h"
#include "request/request.h"
#include "request/volume_ranges.h"

namespace study {

// What is known of a run before its data are read. Volumes are those of the stored image, from 1.
struct RunVolumes {
  std::string name;
  int volumes = 0;
  int dropped = 0;  // leading volumes left out
  double trSeconds = 0;
  std::vector<VolumeRange> kept;  // neither dropped nor censored
  std::vector<TimedEvent> events;
  double costPerVolume = 0;  // of regressed confounds, in degrees of freedom; see effective_volumes.h
};

struct PlannedSet {
  std::string source, target;       // runs
  std::vector<VolumeRange> ranges;  // volumes of the stored image; of the target's as well
  int effectiveVolumes = 0;         // less the order per range and what confounds cost
};

struct PlannedCondition {
  std::string name;
  std::vector<PlannedSet> sets;  // none without ranges
  int totalVolumes = 0;
  int effectiveVolumes = 0;        // of all sets
  std::vector<std::string> notes;  // what was left out, in words
};

// The shortest interval that is worth a model: two volumes go into its trend, `order` into its start.
[[nodiscard]] int leastVolumes(int order);

// Throws InputError, naming the condition, for a trial type that no run has (with the nearest), a
// typed interval outside its run or too short, two that overlap, a run that is named twice with the same
// volumes, and when nothing is left. `where` begins messages.
[[nodiscard]] PlannedCondition planCondition(const ConditionRequest& condition,
                                             const std::vector<RunVolumes>& runs, int order,
                                             const std::string& where);

}  // namespace study

#endif
