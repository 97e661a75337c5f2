#include "results/output_names.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <set>

#include "bids/bids_names.h"
#include "formats/file_error.h"
#include "request/problem.h"
#include "results/record_json.h"

namespace study {

namespace fs = std::filesystem;

namespace {

// Names of files beside the record, and nothing that leads elsewhere.
std::set<std::string> plainNames(const Record& record) {
  std::set<std::string> names;
  for (const auto& [name, size] : record.files) {
    if (!name.empty() && name != ".." && fs::path(name).filename() == name) names.insert(name);
  }
  return names;
}

// Of the result that a record stands for; none when there is no whole one.
std::set<std::string> filesOfResult(const fs::path& record) {
  if (!fs::exists(record)) return {};
  try {
    return plainNames(readRecordFile(record.string()));
  } catch (const formats::FileError&) {
    return {};
  }
}

void removeFile(const fs::path& file) {
  std::error_code error;
  fs::remove(file, error);
  if (error) throw RunError(fmt::format("cannot remove {}: {}", file.string(), error.message()));
}

void moveFile(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::rename(from, to, error);
  if (error) throw RunError(fmt::format("cannot write {}: {}", to.string(), error.message()));
}

}  // namespace

std::vector<std::string> labelsOf(const std::vector<std::string>& names, const char* what,
                                  const std::string& where) {
  std::vector<std::string> labels;
  std::map<std::string, std::string> taken;
  for (const std::string& name : names) {
    labels.push_back(bidsLabel(name));
    const auto [other, isNew] = taken.emplace(labels.back(), name);
    if (isNew) continue;
    throw InputError(
        fmt::format("{}: the {} '{}' and '{}' would share their files, whose names keep letters and digits "
                    "alone ('{}'); rename one, or take them in two requests with different prefixes",
                    where, what, other->second, name, labels.back()));
  }
  return labels;
}

std::string meanVolumeName(const std::string& prefix) {
  return prefix + "_desc-mean_boldref.nii.gz";
}

std::string anatomyName(const std::string& prefix) {
  return prefix + "_desc-anatomy_T1w.nii.gz";
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
std::string OutputNames::nullP(const std::string& conditionLabel, tav::MapType type) const {
  return statistic(conditionLabel, type, "p");
}
std::string OutputNames::nullZ(const std::string& conditionLabel, tav::MapType type) const {
  return statistic(conditionLabel, type, "z");
}
std::string OutputNames::thresholded(const std::string& conditionLabel, tav::MapType type) const {
  return stem(fmt::format("_contrast-{}{}_desc-thresholded_stat-effect_statmap.nii.gz", conditionLabel,
                          mapLabel(type)));
}
std::string OutputNames::reversed(const std::string& conditionLabel) const {
  return statistic(conditionLabel, tav::DTAV, "reversed");
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

std::string OutputNames::passing(const std::string& conditionLabel, tav::MapType type) const {
  return stem(fmt::format("_desc-{}{}Passing_dseg.nii.gz", conditionLabel, mapLabel(type)));
}

std::string OutputNames::passingTable(const std::string& conditionLabel, tav::MapType type) const {
  return stem(fmt::format("_desc-{}{}Passing_dseg.tsv", conditionLabel, mapLabel(type)));
}

std::string OutputNames::clusters(const std::string& conditionLabel) const {
  return stem(fmt::format("_desc-{}_clusters.tsv", conditionLabel));
}

std::string OutputNames::evidence(const std::string& conditionLabel) const {
  return stem(fmt::format("_desc-{}_evidence.json", conditionLabel));
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
  std::set<std::string> outdated = filesOfResult(output_ / record);
  for (const std::string& name : files) outdated.erase(name);
  // An older record must not vouch for a mixture of its files and new ones.
  std::error_code ignored;
  fs::remove(output_ / record, ignored);
  for (const std::string& name : outdated) removeFile(output_ / name);
  for (const std::string& name : files) moveFile(folder() / name, output_ / name);
  return files;
}

std::string requestFileOf(const std::string& prefix) {
  return prefix + "_request.toml";
}

std::string failuresFileOf(const std::string& prefix) {
  return prefix + "_desc-failures_tavmap.tsv";
}

std::string reportFileOf(const std::string& prefix) {
  return prefix + "_report.html";
}

void removeResult(const fs::path& outputFolder, const std::string& recordFile, const Record& record) {
  removeFile(outputFolder / recordFile);
  for (const std::string& name : plainNames(record)) removeFile(outputFolder / name);
}

}  // namespace study
