#include "prepare/cautions.h"

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

std::vector<std::string> runCautions(const RunRequest& run, double trSeconds,
                                     const std::vector<std::string>& filters,
                                     const std::vector<std::string>& regressed) {
  std::vector<std::string> cautions;
  const std::string name = "run '" + run.name + "'";
  std::vector<std::string> found = filters;
  if (found.empty() && parseBidsName(run.bold.filename().string()).get("desc") == "denoised")
    found = {"desc-denoised"};
  if (!found.empty()) {
    cautions.push_back(
        name + " was filtered in time (" + list(found) +
        "). Filtering changes the lagged structure that these maps rest on and can create or hide "
        "directed influence; use unfiltered data");
  }
  for (const std::string& column : regressed) {
    if (column.compare(0, 6, "cosine") != 0) continue;
    cautions.push_back(
        name +
        ": regressing cosine columns is a high-pass filter, which can bias directed influence; "
        "every interval is detrended anyway");
    break;
  }
  if (trSeconds > kSlowTrSeconds) {
    cautions.push_back(
        name + " has a TR of " + number(trSeconds) +
        " s. Influences faster than a volume appear as instantaneous; directed maps of data slower "
        "than 3 s say little");
  }
  return cautions;
}

std::string fewSamplesCaution(const std::string& condition, int effectiveVolumes, int order) {
  const int parameters = 4 * order;
  if (effectiveVolumes >= kSamplesPerParameter * parameters) return "";
  return "condition '" + condition + "' has " + std::to_string(effectiveVolumes) + " effective volumes for " +
         std::to_string(parameters) + " coefficients of the joint model of order " + std::to_string(order) +
         ", fewer than 10 each; estimates are noisy, take a lower order or more data";
}

std::string smallReferenceCaution(const std::string& reference, int voxels) {
  if (voxels >= 2) return "";
  return "reference '" + reference + "' has a single voxel; its course is as noisy as any voxel's";
}

}  // namespace study
