// The task of a simulated run: blocks of two conditions in turn, with rest between them.
#ifndef TAVMAP_SIMULATION_BLOCK_DESIGN_H
#define TAVMAP_SIMULATION_BLOCK_DESIGN_H

#include <string>

#include "formats/protocol.h"

namespace simulation {

inline constexpr int kFewestVolumes = 70;  // for one block of either condition

// The blocks of a run (from 1) in volumes. Odd runs begin with "faces", even ones with "houses".
// The planted influences do not depend on the task.
[[nodiscard]] formats::Protocol blockDesign(int run, int volumes);

// The same as a BIDS events table: onset, duration in seconds, trial_type, by ascending onset.
[[nodiscard]] std::string eventsTable(const formats::Protocol& design, double trMs);

// "12.500": seconds with three decimals, whatever the locale.
[[nodiscard]] std::string secondsText(double ms);

}  // namespace simulation

#endif
