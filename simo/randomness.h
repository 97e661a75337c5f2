// The one place where randomness and time enter. Nothing else calls rand, srand or time.
#ifndef TAVMAP_SIMO_RANDOMNESS_H
#define TAVMAP_SIMO_RANDOMNESS_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace simo {

// The generator draws the numbers of the C library's srand and rand, in their order, from a state
// of its own: no lock, and nothing that a host draws from its generator disturbs a run. Each thread
// has one state, so a run must seed and draw on one thread, as it does. Before the first seeding it
// behaves as seeded with 1, like the C library's.
// Where the C library has no re-entrant form of its generator, srand and rand themselves are used:
// one state for the process.

// The largest number drawn; the normal numbers rely on exactly this range.
inline constexpr int kRandomMax = 2147483647;

// Restarts the sequence, as srand(seed) would.
void seedRandom(unsigned seed);

// The next number, 0 ... kRandomMax, as rand() would give.
[[nodiscard]] int nextRandom();

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
