#include "report/study_outputs.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

#include "formats/atomic_file.h"
#include "formats/table.h"
#include "results/output_names.h"
#include "results/record_json.h"

namespace report {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kRecordEnd = "_tavmap.json", kSeed = "_seed-";

// Empty for a file that is no record of a reference.
std::string prefixOfRecord(const std::string& file) {
  if (!file.ends_with(kRecordEnd)) return "";
  const std::size_t at = file.rfind(kSeed);
  return at == std::string::npos ? "" : file.substr(0, at);
}

std::string prefixOfFailures(const std::string& file) {
  const std::string end = study::failuresFileOf("");
  return file.ends_with(end) ? file.substr(0, file.size() - end.size()) : "";
}

std::vector<std::string> filesIn(const fs::path& folder) {
  std::vector<std::string> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    if (entry.is_regular_file()) files.push_back(entry.path().filename().string());
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<FailedReference> readFailures(const std::string& path) {
  std::vector<FailedReference> failures;
  if (!fs::exists(path)) return failures;
  const formats::Table table = formats::Table::read(path);
  const std::size_t reference = table.require("reference"), message = table.require("message");
  for (std::size_t row = 0; row < table.rows(); ++row)
    failures.push_back({table.cell(row, reference), table.cell(row, message)});
  return failures;
}

}  // namespace

std::vector<std::string> prefixesIn(const fs::path& folder) {
  std::set<std::string> prefixes;
  for (const std::string& file : filesIn(folder)) {
    prefixes.insert(prefixOfRecord(file));
    prefixes.insert(prefixOfFailures(file));
  }
  prefixes.erase("");
  return {prefixes.begin(), prefixes.end()};
}

StudyOutputs readStudyOutputs(const fs::path& folder, const std::string& prefix) {
  StudyOutputs outputs{
      folder, prefix, {}, readFailures((folder / study::failuresFileOf(prefix)).string()), ""};
  for (const std::string& file : filesIn(folder)) {
    if (prefixOfRecord(file) != prefix) continue;
    const std::string path = outputs.path(file);
    outputs.references.push_back(
        {file, formats::parseJson(formats::readTextFile(path), path), study::readRecordFile(path)});
  }
  if (fs::exists(outputs.path(study::requestFileOf(prefix))))
    outputs.requestFile = study::requestFileOf(prefix);
  return outputs;
}

}  // namespace report
