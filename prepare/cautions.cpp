#include "prepare/cautions.h"

#include <fmt/core.h>

#include <algorithm>
#include <sstream>

#include "bids/bids_names.h"

namespace study {
namespace {

constexpr double kSlowTrSeconds = 3.0;
constexpr int kSamplesPerParameter = 10;
constexpr std::size_t kMostLinesNamed = 10;

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

// "2 without onset left out (lines 4, 9)"; empty without any.
std::string rowsText(const std::vector<formats::FlawedRow>& flawed, formats::RowFlaw flaw, const char* what) {
  std::vector<std::string> lines;
  for (const formats::FlawedRow& row : flawed) {
    if (row.flaw == flaw) lines.push_back(std::to_string(row.line));
  }
  if (lines.empty()) return "";
  const std::size_t count = lines.size();
  const bool isLong = count > kMostLinesNamed;
  if (isLong) lines.resize(kMostLinesNamed);
  return fmt::format("{} {} (line{} {}{})", count, what, count == 1 ? "" : "s", list(lines),
                     isLong ? " ..." : "");
}

}  // namespace

std::vector<std::string> knownFilters(const RunRequest& run, const std::vector<std::string>& filters) {
  const bool isDenoised = parseBidsName(run.bold.filename().string()).get("desc") == "denoised";
  return filters.empty() && isDenoised ? std::vector<std::string>{"desc-denoised"} : filters;
}

bool isHighPassed(const std::vector<std::string>& regressed) {
  return std::any_of(regressed.begin(), regressed.end(), [](const std::string& column) {
    return column.starts_with("cosine") || column.starts_with("high_pass");
  });
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

std::string eventsCaution(const RunRequest& run, const std::vector<formats::FlawedRow>& flawed) {
  using formats::RowFlaw;
  const std::string parts[] = {
      rowsText(flawed, RowFlaw::kNoOnset, "without onset left out"),
      rowsText(flawed, RowFlaw::kNoType, "without trial type left out"),
      rowsText(flawed, RowFlaw::kBeforeStart, "left out that ended before the first volume"),
      rowsText(flawed, RowFlaw::kNoDuration, "without duration taken as one volume")};
  std::string text;
  for (const std::string& part : parts) text += part.empty() || text.empty() ? part : ", " + part;
  if (text.empty()) return "";
  return fmt::format("run '{}': of the events in {}, {}", run.name, run.events.filename().string(), text);
}

std::string mixedMasksCaution(const std::vector<RunRequest>& runs, int inclusionThreshold) {
  std::vector<std::string> with, without;
  for (const RunRequest& run : runs)
    (run.mask.empty() ? without : with).push_back(fmt::format("'{}'", run.name));
  if (with.empty() || without.empty()) return "";
  return fmt::format(
      "run {} has no mask, but run {} has one: where there is none, a voxel counts when its first value "
      "exceeds the inclusion threshold of {}, and only voxels that every run includes are mapped; give every "
      "run a mask",
      list(without), list(with), inclusionThreshold);
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
