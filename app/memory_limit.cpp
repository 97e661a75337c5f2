#include "app/memory_limit.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "app/exit_codes.h"

namespace app {

std::optional<double> megabytesOf(const std::string& text) {
  double value = 0;
  const char* last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, value);
  if (error != std::errc() || !std::isfinite(value) || value <= 0) return std::nullopt;
  const std::string_view unit(end, static_cast<std::size_t>(last - end));
  if (unit.empty() || unit == "M") return value;
  if (unit == "G") return 1e3 * value;
  if (unit == "T") return 1e6 * value;
  return std::nullopt;
}

int workersWithin(double megabytes, int jobs) {
  if (megabytes <= 0) return jobs;
  const double fit = std::floor(megabytes / kMegabytesPerWorker);
  if (fit < 1) {
    throw UsageError(fmt::format("--mem-mb: {:g} MB are not enough for one worker, which may take {} MB",
                                 megabytes, kMegabytesPerWorker));
  }
  return static_cast<int>(std::min<double>(fit, jobs));
}

}  // namespace app
