#include "group/present_inputs.h"

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/json_file.h"
#include "results/output_names.h"
#include "results/percent_encoding.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using formats::Json;

// The member of a JSON file, or null where file or member are not there or not what they should be.
Json memberOf(const fs::path& file, const char* key) {
  try {
    const Json json = formats::parseJson(formats::readTextFile(file.string()), file.string());
    if (json.is_object() && json.contains(key)) return json[key];
  } catch (const formats::FileError&) {  // says nothing then
  }
  return nullptr;
}

// As it is written, or where there is none, as its escapes say.
fs::path existing(const fs::path& path) {
  return fs::exists(path) ? path : fs::path(percentDecoded(path.string()));
}

constexpr const char* kRawData = "raw";

// Data sets that the output folder names, by what its records call them.
std::map<std::string, fs::path> linkedFolders(const fs::path& outDir) {
  constexpr std::string_view kScheme = "file://";
  std::map<std::string, fs::path> folders;
  const Json links = memberOf(outDir / "dataset_description.json", "DatasetLinks");
  if (!links.is_object()) return folders;
  for (const auto& [name, link] : links.items()) {
    const std::string text = link.is_string() ? link.get<std::string>() : "";
    if (text.starts_with(kScheme)) folders[name] = existing(text.substr(kScheme.size()));
  }
  return folders;
}

// Maps of a condition share their sources.
std::set<std::string> sourcesOf(const Record& record, const fs::path& folder) {
  std::set<std::string> sources;
  for (const ConditionRecord& condition : record.conditions) {
    if (condition.maps.empty()) continue;
    const Json list = memberOf(folder / OutputNames::sidecarOf(condition.maps[0].file), "Sources");
    for (const Json& source : list) {
      if (source.is_string()) sources.insert(source.get<std::string>());
    }
  }
  return sources;
}

}  // namespace

PresentInputs::PresentInputs(const fs::path& bidsDir, const fs::path& outDir)
    : folders_(linkedFolders(outDir)) {
  if (!bidsDir.empty()) folders_[kRawData] = bidsDir;
}

fs::path rawDataFolder(const fs::path& outDir) {
  const auto folders = linkedFolders(outDir);
  const auto raw = folders.find(kRawData);
  return raw == folders.end() ? fs::path() : raw->second;
}

// "bids:DATASET:PATH"; empty where that leads nowhere.
fs::path PresentInputs::fileOf(const std::string& uri) {
  constexpr std::string_view kScheme = "bids:";
  const std::size_t colon = uri.find(':', kScheme.size());
  if (!uri.starts_with(kScheme) || colon == std::string::npos) return {};
  const auto folder = folders_.find(uri.substr(kScheme.size(), colon - kScheme.size()));
  if (folder == folders_.end()) return {};
  if (fs::is_directory(folder->second)) return existing(folder->second / uri.substr(colon + 1));
  missing_.insert(folder->second.string());
  return {};
}

std::vector<std::string> PresentInputs::problemsOf(const Record& record, const fs::path& file) {
  std::vector<std::string> problems;
  std::error_code error;
  const auto made = fs::last_write_time(file, error);
  if (error) return problems;
  for (const std::string& source : sourcesOf(record, file.parent_path())) {
    const fs::path input = fileOf(source);
    if (input.empty()) continue;
    const auto changed = fs::last_write_time(input, error);
    if (error)
      problems.push_back(input.string() + " is gone");
    else if (changed > made)
      problems.push_back(input.string() + " was changed since");
  }
  return problems;
}

}  // namespace study
