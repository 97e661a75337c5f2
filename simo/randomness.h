// The one place where randomness and time enter. Nothing else calls rand, srand or time.
#ifndef TAVMAP_SIMO_RANDOMNESS_H
#define TAVMAP_SIMO_RANDOMNESS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "simo/random_stream.h"

namespace simo {

// The stream of the calling thread, for callers without one of their own. Before the first seeding it
// is as seeded with 1.
[[nodiscard]] RandomStream& randomStream();

// The number that seeds are counted from: the base set by setTimeBase; else TAV_TIME_BASE of the
// environment, if it holds a whole number; else the wall-clock second. Seeds use its low 32 bits.
[[nodiscard]] std::int64_t timeBase();

// Sets the base of all threads, or with std::nullopt returns to the environment and the clock. A
// shared object has a copy of its own: a program fixes the base of a plug-in by the environment.
void setTimeBase(std::optional<std::int64_t> base);

// The value of a time base given as text: an optional minus sign and digits, nothing else. Lets a
// program refuse a malformed TAV_TIME_BASE, which timeBase() takes as unset.
[[nodiscard]] std::optional<std::int64_t> parseTimeBase(std::string_view text);

}  // namespace simo

#endif
