#include "bids/bids_layout.h"

#include <fmt/core.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <tuple>

#include "bids/bids_filter.h"
#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool isPreprocessedRun(const BidsName& name) {
  const std::string desc = name.get("desc");
  return name.suffix == "bold" && (name.extension == ".nii.gz" || name.extension == ".nii") &&
         (desc == "preproc" || desc == "denoised") && name.has("sub") && name.has("task");
}

std::vector<fs::path> filesBelow(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error),
       end;
       entry != end && !error; entry.increment(error)) {
    if (entry->is_regular_file(error)) files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<fs::path> derivativeFolders(const fs::path& bidsDir, const std::vector<fs::path>& given) {
  for (const fs::path& folder : given) {
    if (!fs::is_directory(folder)) throw InputError("no folder of derivatives: " + folder.string());
  }
  return given.empty() ? std::vector<fs::path>{bidsDir} : given;
}

// The file beside the image with the same entities but for those named, or empty.
fs::path companion(const BidsRun& run, const Names& without, const std::string& desc, const Names& suffixes,
                   const std::string& extension) {
  BidsName name = run.name;
  for (const std::string& key : without) name.erase(key);
  name.set("desc", desc);
  name.extension = extension;
  for (const std::string& suffix : suffixes) {
    name.suffix = suffix;
    const std::string wanted = formatBidsName(name);
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(run.bold.parent_path(), error)) {
      const BidsName found = parseBidsName(entry.path().filename().string());
      if (!found.suffix.empty() && formatBidsName(found) == wanted) return entry.path();
    }
  }
  return {};
}

void findCompanions(BidsRun& run) {
  run.mask = companion(run, {}, "brain", {"mask"}, run.name.extension);
  run.confounds =
      companion(run, {"space", "res", "den", "cohort"}, "confounds", {"timeseries", "regressors"}, ".tsv");
}

bool sameEntity(const BidsName& a, const BidsName& b, std::string_view key) {
  return sameLabel(a.get(key), b.get(key));
}

// An events file belongs to a run when every entity that it names is the run's.
bool eventsBelong(const BidsName& events, const BidsName& run) {
  if (events.suffix != "events" || events.extension != ".tsv") return false;
  return std::all_of(events.entities.begin(), events.entities.end(),
                     [&](const auto& entity) { return sameEntity(events, run, entity.first); });
}

// The inheritance rule of the standard: the file with the most entities wins.
fs::path findEvents(const std::vector<fs::path>& rawFiles, const BidsName& run) {
  fs::path best;
  std::size_t bestEntities = 0;
  for (const fs::path& file : rawFiles) {
    const BidsName name = parseBidsName(file.filename().string());
    if (!eventsBelong(name, run) || name.entities.size() < bestEntities) continue;
    best = file;
    bestEntities = name.entities.size();
  }
  return best;
}

constexpr const char* kKind = "preprocessed run";

void keepWithout(const std::string& key, std::vector<BidsRun>& runs) {
  std::erase_if(runs, [&](const BidsRun& run) { return run.name.has(key); });
  if (runs.empty()) {
    throw InputError(
        fmt::format("no {0} without '{1}-' in its name, as null asks for in the filter file; leave "
                    "'{1}' out of it, or name a label",
                    kKind, key));
  }
}

void filterEntities(const std::map<std::string, std::string>& entities, std::vector<BidsRun>& runs) {
  for (const auto& [key, value] : entities) {
    if (value.empty())
      keepWithout(key, runs);
    else
      filterBy(key, kKind, key, {value}, runs);
  }
}

// --space cannot say "without res-"; a filter can.
std::string hintOfResolution(const std::vector<BidsRun>& runs) {
  const auto with =
      std::count_if(runs.begin(), runs.end(), [](const BidsRun& r) { return r.name.has("res"); });
  if (with == 0 || with == static_cast<std::ptrdiff_t>(runs.size())) return "";
  return R"(, or those without 'res-' by {"bold": {"res": null}} in --bids-filter-file)";
}

void chooseSpace(const std::string& wanted, std::vector<BidsRun>& runs) {
  std::set<std::string> spaces;
  for (const BidsRun& run : runs) spaces.insert(spaceOf(run.name));
  const Names known(spaces.begin(), spaces.end());
  if (wanted.empty() && known.size() <= 1) return;
  if (wanted.empty()) {
    std::string list;
    for (const std::string& space : known) list += (list.empty() ? "" : ", ") + space;
    throw InputError(fmt::format("preprocessed runs exist in several spaces ({}); choose one with --space{}",
                                 list, hintOfResolution(runs)));
  }
  std::erase_if(runs, [&](const BidsRun& run) { return !isInSpace(run.name, wanted); });
  if (runs.empty())
    throw InputError(fmt::format("no preprocessed run in space '{}'{}", wanted, suggestion(wanted, known)));
  std::set<std::string> left;
  for (const BidsRun& run : runs) left.insert(spaceOf(run.name));
  if (left.size() > 1) chooseSpace("", runs);  // complains, with the resolutions
}

// Where a run exists both preprocessed and denoised, the unfiltered one is what the method needs.
void preferPreprocessed(std::vector<BidsRun>& runs) {
  std::set<std::string> preprocessed;
  const auto keyOf = [](const BidsRun& run) {
    BidsName name = run.name;
    name.erase("desc");
    return formatBidsName(name);
  };
  for (const BidsRun& run : runs) {
    if (run.name.get("desc") == "preproc") preprocessed.insert(keyOf(run));
  }
  std::erase_if(runs, [&](const BidsRun& run) {
    return run.name.get("desc") != "preproc" && preprocessed.count(keyOf(run)) > 0;
  });
}

std::vector<BidsRun> collectRuns(const fs::path& bidsDir, const std::vector<fs::path>& derivatives) {
  std::vector<BidsRun> runs;
  for (const fs::path& folder : derivativeFolders(bidsDir, derivatives)) {
    for (const fs::path& file : filesBelow(folder)) {
      BidsRun run{parseBidsName(file.filename().string()), file, {}, {}, {}};
      if (isPreprocessedRun(run.name)) runs.push_back(std::move(run));
    }
  }
  if (runs.empty()) {
    throw InputError(
        fmt::format("no preprocessed run (*_desc-preproc_bold.nii.gz) in {}{}", bidsDir.string(),
                    derivatives.empty() ? "; name the folder with --derivatives" : " or its derivatives"));
  }
  return runs;
}

// Raw files alone: an events file inside a derivative belongs to that derivative's own story, but
// a data set that is a derivative itself may carry them.
std::vector<fs::path> eventFiles(const fs::path& bidsDir) {
  std::vector<fs::path> files = filesBelow(bidsDir);
  std::erase_if(files,
                [](const fs::path& file) { return !endsWith(file.filename().string(), "_events.tsv"); });
  return files;
}

bool runsBefore(const BidsRun& a, const BidsRun& b) {
  const std::string x = a.name.get("run"), y = b.name.get("run");
  return std::tuple(x.size(), x, a.bold) < std::tuple(y.size(), y, b.bold);
}

std::vector<BidsGroup> grouped(std::vector<BidsRun> runs) {
  std::map<std::tuple<std::string, std::string, std::string>, BidsGroup> groups;
  for (BidsRun& run : runs) {
    const std::string participant = run.name.get("sub"), session = run.name.get("ses"),
                      task = run.name.get("task");
    BidsGroup& group = groups[{participant, session, task}];
    group.participant = participant, group.session = session, group.task = task;
    group.runs.push_back(std::move(run));
  }
  std::vector<BidsGroup> list;
  for (auto& [key, group] : groups) {
    std::sort(group.runs.begin(), group.runs.end(), runsBefore);
    list.push_back(std::move(group));
  }
  return list;
}

}  // namespace

std::string BidsGroup::entities() const {
  BidsName shared;
  for (const auto& entity : runs[0].name.entities) {
    const auto& [key, value] = entity;
    const bool common = std::all_of(runs.begin(), runs.end(), [&entity](const BidsRun& run) {
      return run.name.get(entity.first) == entity.second;
    });
    if (common && key != "desc") shared.set(key, value);
  }
  return formatEntities(shared);
}

std::filesystem::path BidsGroup::folder() const {
  fs::path folder = "sub-" + participant;
  if (!session.empty()) folder /= "ses-" + session;
  return folder / "func";
}

std::vector<BidsGroup> findBidsGroups(const fs::path& bidsDir, const std::vector<fs::path>& derivatives,
                                      const BidsQuery& query) {
  if (!fs::is_directory(bidsDir))
    throw InputError(fmt::format("no folder {}; give the BIDS data set", bidsDir.string()));
  std::vector<BidsRun> runs = collectRuns(bidsDir, derivatives);
  filterBy("sub", kKind, "participant", query.participants, runs);
  filterBy("ses", kKind, "session", query.sessions, runs);
  filterBy("task", kKind, "task", query.tasks, runs);
  filterBy("run", kKind, "run", query.runs, runs);
  filterEntities(query.entities, runs);
  preferPreprocessed(runs);
  chooseSpace(query.space, runs);
  const std::vector<fs::path> events = eventFiles(bidsDir);
  for (BidsRun& run : runs) {
    findCompanions(run);
    run.events = findEvents(events, run.name);
  }
  return grouped(std::move(runs));
}

std::map<std::string, std::string> parseBidsFilter(const std::string& text, const std::string& name) {
  static const std::map<std::string, std::string> shortKeys = {
      {"subject", "sub"},        {"session", "ses"},   {"acquisition", "acq"}, {"ceagent", "ce"},
      {"reconstruction", "rec"}, {"direction", "dir"}, {"resolution", "res"},  {"description", "desc"}};
  const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
  if (!json.is_object()) throw InputError(name + ": not a JSON object; a filter reads {\"bold\": {...}}");
  std::map<std::string, std::string> entities;
  const auto bold = json.find("bold");
  if (bold == json.end()) return entities;
  for (const auto& [key, value] : bold->items()) {
    if (key == "suffix" || key == "datatype" || key == "extension") continue;
    const auto known = shortKeys.find(key);
    const std::string entity = known == shortKeys.end() ? key : known->second;
    if (value.is_null())
      entities[entity] = "";
    else if (value.is_string())
      entities[entity] = value.get<std::string>();
    else if (value.is_number_integer())
      entities[entity] = value.dump();
    else
      throw InputError(
          fmt::format("{}: '{}' must be a text, a whole number, or null for names without it", name, key));
  }
  return entities;
}

std::map<std::string, std::string> readBidsFilter(const fs::path& file) {
  std::ifstream stream(file);
  if (!stream) throw InputError("cannot open the BIDS filter file " + file.string());
  return parseBidsFilter({std::istreambuf_iterator<char>(stream), {}}, file.string());
}

}  // namespace study
