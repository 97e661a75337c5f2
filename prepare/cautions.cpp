#include "prepare/cautions.h"

#include <fmt/core.h>

#include <algorithm>
#include <sstream>

#include "bids/bids_names.h"

namespace study {
namespace {

constexpr double kSlowTrSeconds = 3.0;
constexpr int kSamplesPerParameter = 10;

std::string list(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : ", ") + item;
  return text;
}

std::string number(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

}  // namespace

std::vector<std::string> knownFilters(const RunRequest& run, const std::vector<std::string>& filters) {
  const bool isDenoised = parseBidsName(run.bold.filename().string()).get("desc") == "denoised";
  return filters.empty() && isDenoised ? std::vector<std::string>{"desc-denoised"} : filters;
}

bool isHighPassed(const std::vector<std::string>& regressed) {
  return std::any_of(regressed.begin(), regressed.end(),
                     [](const std::string& column) { return column.starts_with("cosine"); });
}

std::vector<std::string> runCautions(const RunRequest& run, double trSeconds,
                                     const std::vector<std::string>& filters,
                                     const std::vector<std::string>& regressed) {
  std::vector<std::string> cautions;
  const std::string name = fmt::format("run '{}'", run.name);
  const std::vector<std::string> found = knownFilters(run, filters);
  if (!found.empty()) {
    cautions.push_back(
        fmt::format("{} was filtered in time ({}). Filtering changes the lagged structure that these maps "
                    "rest on and can create or hide directed influence; use unfiltered data",
                    name, list(found)));
  }
  if (isHighPassed(regressed)) {
    cautions.push_back(
        name +
        ": regressing cosine columns is a high-pass filter, which can bias directed influence; "
        "keep them where slow drift would be worse, and compare the maps without them");
  }
  if (trSeconds > kSlowTrSeconds) {
    cautions.push_back(
        fmt::format("{} has a TR of {} s. Influences faster than a volume appear as instantaneous; directed "
                    "maps of data slower than 3 s say little",
                    name, number(trSeconds)));
  }
  return cautions;
}

std::string fewSamplesCaution(const std::string& condition, int effectiveVolumes, int order) {
  const int parameters = 4 * order;
  if (effectiveVolumes >= kSamplesPerParameter * parameters) return "";
  return fmt::format(
      "condition '{}' has {} effective volumes for {} coefficients of the joint model of order {}, fewer "
      "than 10 each; estimates are noisy, take a lower order or more data",
      condition, effectiveVolumes, parameters, order);
}

std::string smallReferenceCaution(const std::string& reference, int voxels) {
  if (voxels >= 2) return "";
  return fmt::format("reference '{}' has a single voxel; its course is as noisy as any voxel's", reference);
}

}  // namespace study
