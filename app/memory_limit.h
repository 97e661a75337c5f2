// How many workers fit into a limit of memory.
#ifndef TAVMAP_APP_MEMORY_LIMIT_H
#define TAVMAP_APP_MEMORY_LIMIT_H

#include <optional>
#include <string>

namespace app {

// What one worker may take: nearly twice what the largest run took that was measured (docs/performance.md).
inline constexpr int kMegabytesPerWorker = 300;

// Megabytes of "8000", "8000M", "8G" or "1.5T"; unset for anything else, and for nothing or less.
[[nodiscard]] std::optional<double> megabytesOf(const std::string& text);

// At most `jobs`. Throws UsageError when not one fits. 0 megabytes: no limit.
[[nodiscard]] int workersWithin(double megabytes, int jobs);

}  // namespace app

#endif
