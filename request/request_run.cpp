#include <fmt/core.h>

#include <algorithm>

#include "request/confound_terms.h"
#include "request/nearest_name.h"
#include "request/request_tables.h"

namespace study {
namespace {

const std::vector<std::string> kRunKeys = {"name",         "bold",        "mask",          "events",
                                           "confounds",    "regress",     "drop_volumes",  "tr",
                                           "fd_threshold", "min_segment", "censor_before", "censor_after"};

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void parseDrop(const TomlTable& table, RunRequest& run) {
  if (table.has("drop_volumes") && table.texts("drop_volumes", true) == std::vector<std::string>{"auto"}) {
    run.dropVolumes = kDropFromConfounds;
  } else {
    run.dropVolumes = table.integer("drop_volumes", 0, 0, 10000);
  }
}

void parseTerms(const TomlTable& table, RunRequest& run) {
  run.confoundTerms = table.texts("regress");
  for (const std::string& term : run.confoundTerms) {
    const std::string problem = confoundTermProblem(term);
    if (!problem.empty()) table.fail("regress", problem);
  }
}

void parseCensoring(const TomlTable& table, CensorSettings& censoring) {
  censoring.fdThresholdMm = table.number("fd_threshold", 0, 0, 100);
  censoring.minimumSegment = table.integer("min_segment", censoring.minimumSegment, 1, 100000);
  censoring.alsoBefore = table.integer("censor_before", 0, 0, 100);
  censoring.alsoAfter = table.integer("censor_after", 0, 0, 100);
}

void parsePreparationKeys(const TomlTable& table, RunRequest& run) {
  run.trSeconds = table.number("tr", 0, 0.01, 100);
  parseCensoring(table, run.censoring);
  parseDrop(table, run);
  parseTerms(table, run);
}

void requireConfounds(const TomlTable& table, const RunRequest& run) {
  const bool needed =
      !run.confoundTerms.empty() || run.censoring.fdThresholdMm > 0 || run.dropVolumes == kDropFromConfounds;
  if (needed && run.confounds.empty()) {
    failAt(table.file(), table.line(),
           fmt::format("run '{}' asks for regression, censoring or automatic dropping, which need a table: "
                       "add 'confounds = \"...tsv\"'",
                       run.name));
  }
}

}  // namespace

std::filesystem::path existingFile(const TomlTable& table, std::string_view key, const RequestPlace& place) {
  const std::string text = table.text(key);
  if (text.empty()) return {};
  const std::filesystem::path path = (place.folder / text).lexically_normal();
  std::error_code error;
  if (std::filesystem::is_regular_file(path, error)) return path;
  table.fail(key, fmt::format("names a file that does not exist: {}{}", path.string(),
                              suggestion(path.filename().string(), namesIn(path.parent_path()))));
}

RunRequest parseRun(const toml::table& node, const RequestPlace& place, std::size_t number) {
  const TomlTable table(node, place.file, "[[run]]", kRunKeys);
  RunRequest run;
  run.line = table.line();
  run.name = table.text("name", "run" + std::to_string(number));
  run.bold = existingFile(table, "bold", place);
  if (run.bold.empty())
    failAt(place.file, run.line, fmt::format("[[run]] '{}' needs 'bold', a 4-D NIfTI image", run.name));
  run.mask = existingFile(table, "mask", place);
  run.events = existingFile(table, "events", place);
  run.confounds = existingFile(table, "confounds", place);
  parsePreparationKeys(table, run);
  requireConfounds(table, run);
  return run;
}

RunRequest parsePreparation(const toml::table& node, const std::string& file) {
  const TomlTable table(
      node, file, "[preparation]",
      {"regress", "drop_volumes", "tr", "fd_threshold", "min_segment", "censor_before", "censor_after"});
  RunRequest preparation;
  parsePreparationKeys(table, preparation);
  return preparation;
}

}  // namespace study
