#include "study/earlier_results.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/json_file.h"
#include "request/problem.h"
#include "results/output_names.h"
#include "results/record_json.h"
#include "study/request_differences.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr std::size_t kMostDifferences = 8, kMostRequests = 5;

std::string joined(const Texts& texts, std::size_t most, const char* between) {
  std::string text;
  for (std::size_t i = 0; i < std::min(texts.size(), most); ++i) text += (i > 0 ? between : "") + texts[i];
  return texts.size() > most ? fmt::format("{}{}and {} more", text, between, texts.size() - most) : text;
}

std::optional<Record> recordIn(const fs::path& file) {
  try {
    if (fs::exists(file)) return readRecordFile(file.string());
  } catch (const formats::FileError&) {  // not a whole record
  }
  return std::nullopt;
}

// A record of another version may lack what this one asks for; one that was cut off is no JSON at all.
bool isOfAnotherVersion(const fs::path& file) {
  try {
    const formats::Json json = formats::parseJson(formats::readTextFile(file.string()), file.string());
    return json.is_object() && json.contains("Key");
  } catch (const formats::FileError&) {
    return false;
  }
}

// The plan with the order that a result was made with.
StudyPlan withOrderOf(const Record& made, const StudyPlan& plan) {
  StudyPlan other = plan;
  try {
    settleOrder(other, made.model.settings.order);
  } catch (const InputError&) {  // too few volumes for it now: compared with the lowest order
    settleOrder(other, plan.order);
  }
  return other;
}

Texts differencesOf(const StudyPlan& plan, std::size_t region, OrderIs order) {
  const OutputNames names(plan.request.output.prefix, plan.regionLabels[region]);
  const fs::path file = plan.request.output.folder / names.record();
  const std::optional<Record> made = recordIn(file);
  if (!made) return isOfAnotherVersion(file) ? Texts{"a record that this version cannot read"} : Texts{};
  const bool isOpen = order == OrderIs::kAsThere &&
                      plan.request.settings.orderChoice != OrderChoice::kFixed &&
                      made->model.settings.order != plan.order;
  return differencesFrom(*made, file, isOpen ? withOrderOf(*made, plan) : plan, region);
}

// References that differ alike are named together. Empty: nothing differs.
std::string differencesText(const StudyPlan& plan, OrderIs order) {
  std::map<Texts, Texts> references;
  for (std::size_t i = 0; i < plan.regions.size(); ++i) {
    const Texts differences = differencesOf(plan, i, order);
    if (!differences.empty()) references[differences].push_back(fmt::format("'{}'", plan.regions[i].name));
  }
  Texts groups;
  for (const auto& [differences, names] : references)
    groups.push_back(fmt::format("{}: {}", joined(names, kMostDifferences, ", "),
                                 joined(differences, kMostDifferences, "; ")));
  return joined(groups, kMostRequests, " | ");
}

std::string refusalText(const StudyPlan& plan, OrderIs order) {
  const std::string differences = differencesText(plan, order);
  if (differences.empty()) return "";
  const std::string foreign = foreignResultsCaution(plan);
  return fmt::format("{}: {} has results of another request named {}_seed-*. They differ in {}{}{}",
                     plan.request.title, plan.request.output.folder.string(), plan.request.output.prefix,
                     differences, foreign.empty() ? "" : ". ", foreign);
}

std::string namesOf(const std::vector<ForeignResult>& results) {
  Texts names;
  for (const ForeignResult& result : results)
    names.push_back(fmt::format("'{}' ({})", result.record.reference, result.file));
  return joined(names, kMostDifferences, ", ");
}

// "PREFIX_seed-LABEL_tavmap.json", with a label of the kind that references get.
bool isRecordOf(const std::string& prefix, const std::string& file) {
  const std::string begin = prefix + "_seed-", end = "_tavmap.json";
  if (!file.starts_with(begin) || !file.ends_with(end) || file.size() <= begin.size() + end.size())
    return false;
  return std::all_of(file.begin() + static_cast<std::ptrdiff_t>(begin.size()),
                     file.end() - static_cast<std::ptrdiff_t>(end.size()),
                     [](unsigned char c) { return std::isalnum(c) != 0; });
}

}  // namespace

void refuseOtherRequests(const std::vector<StudyPlan>& plans, OrderIs order) {
  Texts refusals;
  for (const StudyPlan& plan : plans) {
    const std::string refusal = refusalText(plan, order);
    if (!refusal.empty()) refusals.push_back(refusal);
  }
  if (refusals.empty()) return;
  throw InputError(
      joined(refusals, kMostRequests, "\n") +
      ". Nothing was changed. Choose another output folder or prefix, or give --force to replace "
      "these results");
}

std::vector<ForeignResult> foreignResults(const StudyPlan& plan) {
  std::vector<ForeignResult> results;
  std::error_code ignored;
  for (fs::directory_iterator entry(plan.request.output.folder, ignored), end; entry != end;
       entry.increment(ignored)) {
    const std::string file = entry->path().filename().string();
    if (!isRecordOf(plan.request.output.prefix, file)) continue;
    const bool isOwn = std::any_of(
        plan.regionLabels.begin(), plan.regionLabels.end(),
        [&](const auto& label) { return OutputNames(plan.request.output.prefix, label).record() == file; });
    std::optional<Record> record = isOwn ? std::nullopt : recordIn(entry->path());
    if (record) results.push_back({file, std::move(*record)});
  }
  std::sort(results.begin(), results.end(),
            [](const ForeignResult& a, const ForeignResult& b) { return a.file < b.file; });
  return results;
}

std::string foreignResultsCaution(const StudyPlan& plan) {
  const std::vector<ForeignResult> results = foreignResults(plan);
  if (results.empty()) return "";
  return fmt::format(
      "{} also has results of references that this request does not have: {}. They stay; --force "
      "removes them",
      plan.request.output.folder.string(), namesOf(results));
}

std::string removeForeignResults(const StudyPlan& plan) {
  const std::vector<ForeignResult> results = foreignResults(plan);
  if (results.empty()) return "";
  for (const ForeignResult& result : results)
    removeResult(plan.request.output.folder, result.file, result.record);
  return fmt::format("removed from {}, being of references that this request does not have: {}",
                     plan.request.output.folder.string(), namesOf(results));
}

}  // namespace study
