#include "group/group.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <tuple>

#include "bids/bids_filter.h"
#include "formats/file_error.h"
#include "group/group_settings.h"
#include "group/present_inputs.h"
#include "request/problem.h"
#include "results/record_json.h"

namespace study {
namespace {

namespace fs = std::filesystem;

struct RecordFile {
  BidsName name;
  fs::path path;
};

void sortAndBlank(ConditionRecord& condition) {
  for (MapResult& map : condition.maps) {
    if (!hasPeak(condition, map)) map.peak = std::numeric_limits<double>::quiet_NaN();
    std::stable_sort(map.thresholds.begin(), map.thresholds.end(),
                     [](const auto& a, const auto& b) { return a.q < b.q; });
  }
  std::stable_sort(condition.maps.begin(), condition.maps.end(),
                   [](const MapResult& a, const MapResult& b) { return a.type < b.type; });
}

Record readSorted(const fs::path& file) {
  Record record = readRecordFile(file.string());
  for (ConditionRecord& condition : record.conditions) sortAndBlank(condition);
  std::stable_sort(record.conditions.begin(), record.conditions.end(),
                   [](const ConditionRecord& a, const ConditionRecord& b) { return a.name < b.name; });
  return record;
}

void readRecord(const RecordFile& file, const fs::path& outDir, GroupResult& group) {
  const std::string remedy =
      fmt::format("; left out, run the participant level of 'sub-{}' again", file.name.get("sub"));
  try {
    Record record = readSorted(file.path);
    group.records.push_back(
        {file.name, file.path.lexically_relative(outDir).generic_string(), std::move(record)});
  } catch (const formats::FileError& error) {
    group.failures.push_back(fmt::format("{}: {}{}", file.path.string(), error.reason(), remedy));
  }
}

bool isRecord(const std::string& fileName) {
  constexpr std::string_view kEnd = "_tavmap.json";
  return fileName.size() > kEnd.size() && fileName.ends_with(kEnd) && fileName != "group_tavmap.json";
}

// Hidden folders hold results in the making.
std::vector<fs::path> recordFilesBelow(const fs::path& folder) {
  std::vector<fs::path> files;
  try {
    for (fs::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
      const std::string name = entry->path().filename().string();
      if (entry->is_directory()) {
        if (name[0] == '.') entry.disable_recursion_pending();
      } else if (isRecord(name)) {
        files.push_back(entry->path());
      }
    }
  } catch (const fs::filesystem_error& error) {
    throw InputError(
        fmt::format("{}: cannot be searched for records ({}); check the folder and its permissions",
                    error.path1().string(), error.code().message()));
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<RecordFile> recordsOfParticipants(const fs::path& outDir, std::vector<std::string>& cautions) {
  const std::vector<fs::path> files =
      fs::is_directory(outDir) ? recordFilesBelow(outDir) : std::vector<fs::path>();
  std::vector<RecordFile> records;
  for (const fs::path& file : files) {
    const BidsName name = parseBidsName(file.filename().string());
    if (name.has("sub"))
      records.push_back({name, file});
    else
      cautions.push_back(file.string() + " names no participant (sub-LABEL_...) and is left out");
  }
  if (records.empty()) {
    throw InputError(
        fmt::format("no record of a participant (sub-*_tavmap.json) below {}; run the participant level into "
                    "this folder first",
                    outDir.string()));
  }
  return records;
}

void choose(const BidsQuery& query, std::vector<RecordFile>& records) {
  filterBy("sub", "record", "participant", query.participants, records);
  filterBy("ses", "record", "session", query.sessions, records);
  filterBy("task", "record", "task", query.tasks, records);
  if (query.space.empty()) return;
  std::set<std::string> known;
  for (const RecordFile& record : records) known.insert(spaceOf(record.name));
  std::erase_if(records, [&](const RecordFile& record) { return !isInSpace(record.name, query.space); });
  if (records.empty()) {
    throw InputError(fmt::format("no record in space '{}'{}", query.space,
                                 suggestion(query.space, {known.begin(), known.end()})));
  }
}

std::string outdatedText(const GroupRecord& record, const std::vector<std::string>& problems) {
  constexpr std::size_t kMostProblems = 3;
  std::string text = record.file + ":";
  for (std::size_t i = 0; i < std::min(problems.size(), kMostProblems); ++i)
    text += fmt::format("{} {}", i > 0 ? "," : "", problems[i]);
  if (problems.size() > kMostProblems) text += fmt::format(" and {} more", problems.size() - kMostProblems);
  return text;
}

void refuse(const std::vector<std::string>& outdated) {
  std::string text = "these records do not belong to the present inputs:";
  for (const std::string& record : outdated) text += "\n  " + record;
  throw InputError(
      text +
      "\nrun the participant level again for them, with --force, or give --leave-out-outdated to go on "
      "without them");
}

// A record outlives its inputs.
void holdAgainstInputs(const fs::path& outDir, const GroupOptions& options, GroupResult& group) {
  PresentInputs inputs(options.bidsDir, outDir);
  std::vector<std::string> outdated;
  std::erase_if(group.records, [&](const GroupRecord& record) {
    const std::vector<std::string> problems = inputs.problemsOf(record.record, outDir / record.file);
    if (!problems.empty()) outdated.push_back(outdatedText(record, problems));
    return !problems.empty();
  });
  for (const std::string& folder : inputs.missing())
    group.cautions.push_back(
        fmt::format("there is no folder {}; records were not held against their inputs there", folder));
  if (!outdated.empty() && options.outdated == Outdated::kRefused) refuse(outdated);
  for (const std::string& record : outdated)
    group.cautions.push_back(fmt::format("left out, not belonging to the present inputs: {}", record));
}

auto subjectOf(const GroupRecord& record) {
  return std::tuple(record.name.get("sub"), record.name.get("ses"), record.name.get("task"),
                    record.record.reference);
}

// One run or one space of a participant beside another, for instance.
void tellRepeated(const std::vector<GroupRecord>& records, std::vector<std::string>& cautions) {
  const auto same = [](const GroupRecord& a, const GroupRecord& b) { return subjectOf(a) == subjectOf(b); };
  const auto first = std::adjacent_find(records.begin(), records.end(), same);
  if (first == records.end()) return;
  cautions.push_back(
      fmt::format("several records of one participant, session, task and reference, such as {} and {}: each "
                  "has its rows, and the counts take a participant once, as passing when one of them passes",
                  first->file, std::next(first)->file));
}

}  // namespace

GroupResult readGroup(const fs::path& outDir, const GroupOptions& options) {
  GroupResult group;
  std::vector<RecordFile> files = recordsOfParticipants(outDir, group.cautions);
  choose(options.query, files);
  for (const RecordFile& file : files) readRecord(file, outDir, group);
  holdAgainstInputs(outDir, options, group);
  SettingsSeen settings;
  for (const GroupRecord& record : group.records) settings.add(record.record);
  std::stable_sort(group.records.begin(), group.records.end(),
                   [](const GroupRecord& a, const GroupRecord& b) {
                     return std::tuple_cat(subjectOf(a), std::tie(a.file)) <
                            std::tuple_cat(subjectOf(b), std::tie(b.file));
                   });
  for (std::string& caution : settings.differences()) group.cautions.push_back(std::move(caution));
  tellRepeated(group.records, group.cautions);
  return group;
}

}  // namespace study
