#include "report/group_page.h"

#include <fmt/core.h>

#include "formats/atomic_file.h"
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

}  // namespace

std::vector<std::string> writeGroupReports(const fs::path& outDir) {
  std::vector<std::string> pages;
  for (const GroupOutputs& outputs : readGroupOutputs(outDir)) pages.push_back(writePage(outputs));
  return pages;
}

}  // namespace report
