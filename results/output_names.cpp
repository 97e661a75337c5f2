#include "results/output_names.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "bids/bids_names.h"
#include "request/problem.h"

namespace study {

namespace fs = std::filesystem;

std::vector<std::string> uniqueLabels(const std::vector<std::string>& names) {
  std::vector<std::string> labels;
  std::set<std::string> taken;
  for (const std::string& name : names) {
    const std::string base = bidsLabel(name);
    std::string label = base;
    for (int number = 2; !taken.insert(label).second; ++number) label = fmt::format("{}n{}", base, number);
    labels.push_back(label);
  }
  return labels;
}

OutputNames::OutputNames(std::string prefix, std::string seedLabel)
    : prefix_(std::move(prefix)), seed_(std::move(seedLabel)) {}

std::string OutputNames::stem(const std::string& more) const {
  return fmt::format("{}_seed-{}{}", prefix_, seed_, more);
}

std::string OutputNames::statistic(const std::string& conditionLabel, tav::MapType type,
                                   const char* what) const {
  return stem(fmt::format("_contrast-{}{}_stat-{}_statmap.nii.gz", conditionLabel, mapLabel(type), what));
}

std::string OutputNames::map(const std::string& conditionLabel, tav::MapType type) const {
  return statistic(conditionLabel, type, "effect");
}
std::string OutputNames::voxelP(const std::string& conditionLabel, tav::MapType type) const {
  return statistic(conditionLabel, type, "pfwe");
}
std::string OutputNames::clusterP(const std::string& conditionLabel, tav::MapType type) const {
  return statistic(conditionLabel, type, "pfwecluster");
}

std::string OutputNames::status(const std::string& conditionLabel) const {
  return stem(fmt::format("_desc-{}Status_dseg.nii.gz", conditionLabel));
}

std::string OutputNames::statusTable(const std::string& conditionLabel) const {
  return stem(fmt::format("_desc-{}Status_dseg.tsv", conditionLabel));
}

std::string OutputNames::direction(const std::string& conditionLabel) const {
  return stem(fmt::format("_desc-{}Direction_dseg.nii.gz", conditionLabel));
}

std::string OutputNames::directionTable(const std::string& conditionLabel) const {
  return stem(fmt::format("_desc-{}Direction_dseg.tsv", conditionLabel));
}

std::string OutputNames::courses() const {
  return stem("_desc-reference_timeseries.tsv");
}
std::string OutputNames::record() const {
  return stem("_tavmap.json");
}

std::string OutputNames::sidecarOf(const std::string& file) {
  for (const std::string extension : {".nii.gz", ".tsv"}) {
    const bool ends = file.size() > extension.size() &&
                      file.compare(file.size() - extension.size(), extension.size(), extension) == 0;
    if (ends) return file.substr(0, file.size() - extension.size()) + ".json";
  }
  return file + ".json";
}

// "+" occurs in no prefix of entities, so that two results cannot share a name.
Staging::Staging(const fs::path& outputFolder, const std::string& prefix, const std::string& label)
    : output_(outputFolder), folder_(outputFolder, fmt::format("{}+{}", prefix, label)) {}

std::vector<std::string> Staging::publish(const std::string& record) {
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(folder())) {
    const std::string name = entry.path().filename().string();
    if (name != record) files.push_back(name);
  }
  std::sort(files.begin(), files.end());
  files.push_back(record);
  // An older record must not vouch for a mixture of its files and new ones.
  std::error_code ignored;
  fs::remove(output_ / record, ignored);
  for (const std::string& name : files) {
    std::error_code error;
    fs::rename(folder() / name, output_ / name, error);
    if (error) throw RunError(fmt::format("cannot write {}: {}", (output_ / name).string(), error.message()));
  }
  return files;
}

}  // namespace study
