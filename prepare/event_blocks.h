// From an events table to stretches of volumes: events of the chosen types, joined into blocks,
// moved by the haemodynamic delay, cut to the run.
#ifndef TAVMAP_PREPARE_EVENT_BLOCKS_H
#define TAVMAP_PREPARE_EVENT_BLOCKS_H

#include <string>
#include <vector>

#include "request/volume_ranges.h"

namespace study {

struct TimedEvent {
  double onsetSeconds;
  double durationSeconds;
  std::string trialType;
};

struct BlockSettings {
  std::vector<std::string> trialTypes;  // events of any of these belong to the condition
  double delaySeconds = 0;              // added to both ends
  double joinGapSeconds = 0;            // events whose gap is shorter form one block
};

// Blocks as volumes of a run of the given length, volumes counted from 1. The ends are rounded as
// the plug-in rounds protocols in milliseconds: first = round(start / TR) + 1, last = round(end / TR),
// at least one volume. Parts outside the run are cut off. Order of time.
[[nodiscard]] std::vector<VolumeRange> eventBlocks(const std::vector<TimedEvent>& events,
                                                   const BlockSettings& settings, double trSeconds,
                                                   int volumes);

// Events of the types that begin before an earlier one of them has ended: eventBlocks() merges the two.
[[nodiscard]] int overlappingEvents(const std::vector<TimedEvent>& events,
                                    const std::vector<std::string>& trialTypes);

// Events of the types, with the delay, of which no volume lies in the run. Order of time.
[[nodiscard]] std::vector<TimedEvent> eventsOutside(const std::vector<TimedEvent>& events,
                                                    const BlockSettings& settings, double trSeconds,
                                                    int volumes);

// Trial types that occur, sorted, without duplicates: for messages.
[[nodiscard]] std::vector<std::string> trialTypesOf(const std::vector<TimedEvent>& events);

}  // namespace study

#endif
