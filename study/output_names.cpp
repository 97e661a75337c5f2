#include "study/output_names.h"

#include <algorithm>
#include <set>

#include "study/bids_names.h"
#include "study/problem.h"

namespace study {
namespace {

namespace fs = std::filesystem;
// "+" occurs in no prefix of entities, so that one prefix cannot be the beginning of another's name.
std::string stagingBegin(const std::string& prefix) { return ".tavmap-" + prefix + "+"; }

}  // namespace

std::vector<std::string> uniqueLabels(const std::vector<std::string>& names) {
  std::vector<std::string> labels;
  std::set<std::string> taken;
  for (const std::string& name : names) {
    const std::string base = bidsLabel(name);
    std::string label = base;
    for (int number = 2; !taken.insert(label).second; ++number) label = base + "n" + std::to_string(number);
    labels.push_back(label);
  }
  return labels;
}

OutputNames::OutputNames(std::string prefix, std::string seedLabel)
    : prefix_(std::move(prefix)), seed_(std::move(seedLabel)) {}

std::string OutputNames::stem(const std::string& more) const { return prefix_ + "_seed-" + seed_ + more; }

std::string OutputNames::map(const std::string& conditionLabel, tav::MapType type) const {
  return stem("_contrast-" + conditionLabel + mapLabel(type) + "_stat-effect_statmap.nii.gz");
}

std::string OutputNames::status(const std::string& conditionLabel) const {
  return stem("_desc-" + conditionLabel + "Status_dseg.nii.gz");
}

std::string OutputNames::statusTable(const std::string& conditionLabel) const {
  return stem("_desc-" + conditionLabel + "Status_dseg.tsv");
}

std::string OutputNames::courses() const { return stem("_desc-reference_timeseries.tsv"); }
std::string OutputNames::record() const { return stem("_tavmap.json"); }

std::string OutputNames::sidecarOf(const std::string& file) {
  for (const std::string extension : {".nii.gz", ".tsv"}) {
    const bool ends = file.size() > extension.size() && file.compare(file.size() - extension.size(), extension.size(), extension) == 0;
    if (ends) return file.substr(0, file.size() - extension.size()) + ".json";
  }
  return file + ".json";
}

Staging::Staging(const fs::path& outputFolder, const std::string& prefix, const std::string& label)
    : output_(outputFolder), folder_(outputFolder / (stagingBegin(prefix) + label)) {
  std::error_code error;
  fs::remove_all(folder_, error);
  fs::create_directories(folder_, error);
  if (error) throw RunError("cannot create " + folder_.string() + ": " + error.message() + "; check the output folder");
}

Staging::~Staging() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

std::vector<std::string> Staging::publish(const std::string& record) {
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(folder_)) {
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
    fs::rename(folder_ / name, output_ / name, error);
    if (error) throw RunError("cannot write " + (output_ / name).string() + ": " + error.message());
  }
  return files;
}

void removeOldStaging(const fs::path& outputFolder, const std::string& prefix) {
  std::error_code ignored;
  std::vector<fs::path> old;
  for (const auto& entry : fs::directory_iterator(outputFolder, ignored)) {
    if (entry.path().filename().string().rfind(stagingBegin(prefix), 0) == 0) old.push_back(entry.path());
  }
  for (const fs::path& folder : old) fs::remove_all(folder, ignored);
}

}  // namespace study
