#include "report/group_page.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <string_view>

#include "formats/atomic_file.h"
#include "group/group_names.h"
#include "report/edge_group_section.h"
#include "report/group_outputs.h"
#include "report/group_sections.h"
#include "report/html.h"
#include "report/page.h"
#include "results/output_names.h"

namespace report {
namespace {

namespace fs = std::filesystem;

void add(const char* id, const char* title, const std::string& section, PageParts& parts) {
  if (section.empty()) return;
  parts.contents.emplace_back(id, title);
  parts.body += section;
}

PageParts partsOf(const GroupOutputs& outputs, const GroupMaps& maps) {
  PageParts parts;
  add("warnings", "Read this first", groupWarningsSection(outputs), parts);
  add("summary", "Summary", groupSummarySection(outputs), parts);
  add("maps", "Maps", maps.html, parts);
  add("peaks", "Clusters and peaks", groupPeaksSection(outputs), parts);
  add("participants", "Participants", groupParticipantsSection(outputs), parts);
  add("limits", "What this does not show", groupLimitsSection(outputs), parts);
  add("methods", "Methods", groupMethodsSection(outputs), parts);
  add("provenance", "Provenance", groupProvenanceSection(outputs), parts);
  parts.title = "Tavmap: group, " + outputs.test;
  parts.lead = element("p", {{"class", "lead"}},
                       fmt::format("A test over {} participants.", outputs.cells[0].record.rows.size()));
  parts.body = maps.definitions + parts.body;
  return parts;
}

// A participant's table of regions, which orders pictures: the first one below the folder.
std::string anyNodesFile(const fs::path& outDir) {
  std::vector<std::string> files;
  for (fs::recursive_directory_iterator entry(outDir), end; entry != end; ++entry) {
    const std::string file = entry->path().filename().string();
    if (file.starts_with("sub-") && file.ends_with("_nodes.tsv")) files.push_back(entry->path().string());
  }
  return files.empty() ? "" : *std::min_element(files.begin(), files.end());
}

std::string writePage(const GroupOutputs& outputs) {
  const GroupMaps maps = groupMapsSection(outputs);
  const std::string path = outputs.path(study::reportFileOf(outputs.test));
  formats::writeTextFile(path, page(partsOf(outputs, maps)), formats::Durability::kCached);
  const fs::path figures = outputs.folder() / "figures";
  fs::create_directories(figures);
  for (const auto& [file, svg] : maps.pictures)
    formats::writeTextFile((figures / file).string(), svg, formats::Durability::kCached);
  return path;
}

// "STEM_meas-M_components.tsv": tests at every edge, by the name of the test.
std::map<std::string, std::vector<EdgeGroupFiles>> edgeTestsIn(const fs::path& outDir) {
  constexpr std::string_view kEnd = "_components.tsv", kMeasure = "_meas-", kTest = "_desc-";
  std::map<std::string, std::vector<EdgeGroupFiles>> tests;
  std::error_code missing;
  for (const fs::directory_entry& entry : fs::directory_iterator(outDir / study::kGroupFolder, missing)) {
    const std::string file = entry.path().filename().string();
    const std::size_t measure = file.rfind(kMeasure), test = file.rfind(kTest);
    if (!file.ends_with(kEnd) || measure == std::string::npos || test == std::string::npos) continue;
    const std::string stem = file.substr(0, measure);
    const std::size_t first = measure + kMeasure.size();
    tests[stem.substr(test + kTest.size())].push_back({outDir / study::kGroupFolder, stem,
                                                       file.substr(first, file.size() - kEnd.size() - first),
                                                       anyNodesFile(outDir)});
  }
  for (auto& [test, files] : tests)
    std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return a.stem < b.stem; });
  return tests;
}

std::string writeEdgePage(const std::string& test, const std::vector<EdgeGroupFiles>& tests) {
  PageParts parts;
  Figures figures;
  for (const EdgeGroupFiles& files : tests) {
    const std::string title = fmt::format("{}, {}", files.measure, name(files.stem));
    parts.contents.emplace_back(edgeGroupId(files), title);
    parts.body += edgeGroupSection(files, title, figures);
  }
  parts.title = "Tavmap: group, " + test + ", connectomes";
  parts.lead =
      element("p", {{"class", "lead"}}, "A test over participants at every edge of their connectomes.");
  const fs::path folder = tests[0].folder;
  const std::string path = (folder / (test + "_connectome.html")).string();
  formats::writeTextFile(path, page(parts), formats::Durability::kCached);
  fs::create_directories(folder / "figures");
  for (const auto& [file, bytes] : figures)
    formats::writeTextFile((folder / "figures" / file).string(), bytes, formats::Durability::kCached);
  return path;
}

}  // namespace

std::vector<std::string> writeGroupReports(const fs::path& outDir) {
  std::vector<std::string> pages;
  for (const GroupOutputs& outputs : readGroupOutputs(outDir)) pages.push_back(writePage(outputs));
  for (const auto& [test, files] : edgeTestsIn(outDir)) pages.push_back(writeEdgePage(test, files));
  return pages;
}

}  // namespace report
