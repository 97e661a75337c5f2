#include "request/request_file.h"

#include <fmt/core.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <utility>

#include "request/nearest_name.h"
#include "request/problem.h"
#include "request/request_settings.h"
#include "request/request_tables.h"
#include "request/toml_table.h"

namespace study {
namespace {

// "title" and "datasets" are written by request_text.cpp alone.
const std::vector<std::string> kTopKeys = {"prefix",    "folder", "work_folder", "seed",
                                           "settings",  "run",    "anatomy",     "reference",
                                           "condition", "title",  "datasets",    "connectome"};

std::string contents(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw InputError(fmt::format("cannot open the request {}; check the path", file.string()));
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

constexpr std::ptrdiff_t kMostDots = 4000;  // in one line

// A key of very many parts, "a.a.a...", is a table in a table; the library follows them until the stack ends.
void refuseEndlessKeys(std::string_view text, const std::string& name) {
  for (int line = 1; !text.empty(); ++line) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    if (std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '.') > kMostDots) {
      failAt(name, line,
             "more than " + std::to_string(kMostDots) + " dots in one line; check that it is the right file");
    }
    text.remove_prefix(end + 1);
  }
}

toml::table parseToml(std::string_view text, const std::string& name) {
  refuseEndlessKeys(text, name);
  try {
    return toml::parse(text, name);
  } catch (const toml::parse_error& error) {
    failAt(name, static_cast<int>(error.source().begin.line), std::string(error.description()));
  }
}

// The tables of "[[key]]". A single "[key]" is taken for a list of one: the commonest slip.
std::vector<const toml::table*> tablesOf(const TomlTable& top, const toml::table& root, const char* key) {
  std::vector<const toml::table*> tables;
  const toml::node* node = root.get(key);
  if (node == nullptr) return tables;
  if (node->is_table()) return {node->as_table()};
  if (!node->is_array()) top.fail(key, fmt::format("must be written as tables, [[{}]]", key));
  for (const toml::node& item : *node->as_array()) {
    if (!item.is_table()) top.fail(key, fmt::format("must be written as tables, [[{}]]", key));
    tables.push_back(item.as_table());
  }
  return tables;
}

std::vector<std::string> runNames(const Request& request) {
  std::vector<std::string> names;
  for (const RunRequest& run : request.runs) names.push_back(run.name);
  return names;
}

void checkUnique(const std::vector<std::pair<std::string, int>>& names, const char* what,
                 const std::string& file) {
  std::set<std::string> seen;
  for (const auto& [name, line] : names) {
    if (!seen.insert(name).second) {
      failAt(file, line, fmt::format("two {} are named '{}'; give each a name of its own", what, name));
    }
  }
}

std::uint32_t readSeed(const TomlTable& top) {
  return static_cast<std::uint32_t>(top.integer("seed", 0, 0, 2147483647));
}

void readOutput(const TomlTable& top, const RequestPlace& place, Request& request) {
  request.output.prefix = top.text("prefix", "tavmap");
  const bool plain = request.output.prefix.find_first_of("/\\ ") == std::string::npos;
  if (!plain || request.output.prefix.empty()) top.fail("prefix", "must be a word without blanks or slashes");
  request.output.folder = (place.folder / top.text("folder", "results")).lexically_normal();
  const std::string work = top.text("work_folder");
  if (!work.empty()) request.output.workFolder = (place.folder / work).lexically_normal();
  if (top.has("seed")) request.seed = readSeed(top);
}

void readDatasets(const TomlTable& top, const RequestPlace& place, Request& request) {
  const toml::table* node = top.subtable("datasets");
  if (node == nullptr) return;
  for (const auto& [key, value] : *node) {
    const auto folder = value.value_exact<std::string>();
    if (!folder) top.fail("datasets", "must hold folders in quotes");
    request.datasets[std::string(key.str())] = (place.folder / *folder).lexically_normal();
  }
}

void readRuns(const TomlTable& top, const toml::table& root, const RequestPlace& place, Request& request) {
  std::vector<std::pair<std::string, int>> names;
  for (const toml::table* node : tablesOf(top, root, "run")) {
    request.runs.push_back(parseRun(*node, place, request.runs.size() + 1));
    names.emplace_back(request.runs.back().name, request.runs.back().line);
  }
  if (request.runs.empty()) failAt(place.file, 0, "no [[run]]: name at least one image of a run");
  checkUnique(names, "runs", place.file);
}

void requireEvents(const Request& request, const ConditionRequest& condition, const std::string& file) {
  if (condition.kind != IntervalKind::kEvents) return;
  for (const ConditionPart& part : condition.parts) {
    for (const RunRequest& run : request.runs) {
      if (run.name != part.source || !run.events.empty()) continue;
      failAt(file, condition.line,
             fmt::format("condition '{}' uses 'trial_types', but run '{}' has no 'events'", condition.name,
                         run.name));
    }
  }
}

void readConditions(const TomlTable& top, const toml::table& root, const RequestPlace& place,
                    Request& request) {
  std::vector<std::pair<std::string, int>> names;
  for (const toml::table* node : tablesOf(top, root, "condition")) {
    request.conditions.push_back(parseCondition(*node, place, runNames(request)));
    requireEvents(request, request.conditions.back(), place.file);
    names.emplace_back(request.conditions.back().name, request.conditions.back().line);
  }
  checkUnique(names, "conditions", place.file);
  if (!request.conditions.empty()) return;
  ConditionRequest whole;
  whole.name = "whole";
  for (const std::string& run : runNames(request)) whole.parts.push_back({run, run, {}});
  request.conditions.push_back(std::move(whole));
}

}  // namespace

Request parseRequest(std::string_view text, const std::string& name, const std::filesystem::path& folder) {
  const toml::table root = parseToml(text, name);
  const TomlTable top(root, name, "the request", kTopKeys);
  const RequestPlace place{name, folder};
  Request request;
  request.title = top.text("title", name);
  readOutput(top, place, request);
  readDatasets(top, place, request);
  request.anatomy = existingFile(top, "anatomy", place);
  const toml::table* settings = top.subtable("settings");
  if (settings != nullptr) request.settings = parseSettings(*settings, name);
  if (const toml::table* connectome = top.subtable("connectome"))
    request.connectome = parseConnectome(*connectome, name);
  readRuns(top, root, place, request);
  for (const toml::table* node : tablesOf(top, root, "reference")) {
    request.references.push_back(parseReference(*node, place));
  }
  if (request.references.empty()) failAt(name, 0, "no [[reference]]: name at least one reference region");
  readConditions(top, root, place, request);
  return request;
}

RequestTemplate parseRequestTemplate(std::string_view text, const std::string& name,
                                     const std::filesystem::path& folder) {
  const toml::table root = parseToml(text, name);
  const TomlTable top(root, name, "the configuration",
                      {"seed", "settings", "connectome", "preparation", "reference", "condition"});
  const RequestPlace place{name, folder};
  RequestTemplate result;
  if (top.has("seed")) result.seed = readSeed(top);
  if (const toml::table* settings = top.subtable("settings"))
    result.settings = parseSettings(*settings, name);
  if (const toml::table* connectome = top.subtable("connectome"))
    result.connectome = parseConnectome(*connectome, name);
  if (const toml::table* preparation = top.subtable("preparation")) {
    result.preparation = parsePreparation(*preparation, name);
  }
  for (const toml::table* node : tablesOf(top, root, "reference")) {
    result.references.push_back(parseReference(*node, place));
  }
  for (const toml::table* node : tablesOf(top, root, "condition")) {
    result.conditions.push_back(parseCondition(*node, place, {}));
  }
  return result;
}

RequestTemplate readRequestTemplate(const std::filesystem::path& file) {
  return parseRequestTemplate(contents(file), file.string(), file.parent_path());
}

Request readRequestFile(const std::filesystem::path& file) {
  return parseRequest(contents(file), file.string(), file.parent_path());
}

}  // namespace study
