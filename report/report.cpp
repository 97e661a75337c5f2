#include "report/report.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"
#include "report/evidence_section.h"
#include "report/html.h"
#include "report/maps_section.h"
#include "report/page.h"
#include "report/page_assets.h"
#include "report/sections.h"
#include "results/output_names.h"

namespace report {
namespace {

namespace fs = std::filesystem;

class PageWriter {
 public:
  // Sections that say nothing are left out, of the contents too.
  void add(const char* id, const char* title, const std::string& section) {
    if (section.empty()) return;
    parts_.contents.emplace_back(id, title);
    parts_.body += section;
  }
  PageParts& parts() { return parts_; }

 private:
  PageParts parts_;
};

std::string leadOf(const StudyOutputs& outputs) {
  const std::size_t references = outputs.references.size();
  return element("p", {{"class", "lead"}},
                 fmt::format("Directed influence between {} reference region{} and every voxel.", references,
                             references == 1 ? "" : "s"));
}

// Bytes for maps, of a page that can be mailed.
std::size_t leftOf(std::size_t taken) {
  constexpr std::size_t kPage = 8'000'000, kOtherSections = 900'000;
  return kPage - std::min(kPage, taken + kOtherSections);
}

std::string dataOf(const MapsSection& maps, const EvidenceSection& evidence) {
  if (maps.data.is_null()) return "";
  formats::Json data = maps.data;
  data["format"] = 1;
  data["charts"] = evidence.charts;
  return data.dump();
}

// Of results that are gone: no picture outlives its map.
void removeOldPictures(const fs::path& figures, const std::string& prefix, const MapsSection& maps) {
  if (!fs::is_directory(figures)) return;
  std::vector<fs::path> old;
  for (const fs::directory_entry& entry : fs::directory_iterator(figures)) {
    const std::string file = entry.path().filename().string();
    const bool isNew = std::any_of(maps.pictures.begin(), maps.pictures.end(),
                                   [&](const auto& picture) { return picture.first == file; });
    if (file.starts_with(prefix + "_seed-") && file.ends_with(".svg") && !isNew) old.push_back(entry.path());
  }
  for (const fs::path& file : old) fs::remove(file);
}

void writePictures(const fs::path& folder, const std::string& prefix, const MapsSection& maps) {
  removeOldPictures(folder / "figures", prefix, maps);
  if (maps.pictures.empty()) return;
  fs::create_directories(folder / "figures");
  for (const auto& [file, svg] : maps.pictures)
    formats::writeTextFile((folder / "figures" / file).string(), svg, formats::Durability::kCached);
}

}  // namespace

std::string writeReport(const fs::path& folder, const std::string& prefix, int threads) {
  const StudyOutputs outputs = readStudyOutputs(folder, prefix);
  const EvidenceSection evidence = evidenceSection(outputs);
  const std::string peaks = peaksSection(outputs);
  const MapsSection maps =
      mapsSection(outputs, isInteractive(), leftOf(evidence.html.size() + peaks.size()), threads);
  PageWriter writer;
  writer.add("warnings", "Read this first", warningsSection(outputs));
  writer.add("summary", "Summary", summarySection(outputs));
  writer.add("maps", "Maps", maps.html);
  writer.add("peaks", "Clusters and peaks", peaks);
  writer.add("evidence", "Evidence", evidence.html);
  writer.add("limits", "What this does not show", limitsSection(outputs));
  writer.add("methods", "Methods", methodsSection(outputs));
  writer.add("provenance", "Provenance", provenanceSection(outputs));
  PageParts& parts = writer.parts();
  parts.title = "Tavmap: " + prefix;
  parts.lead = leadOf(outputs);
  parts.body = maps.definitions + parts.body;
  parts.volumes = maps.volumes;
  parts.data = dataOf(maps, evidence);
  const std::string path = outputs.path(study::reportFileOf(prefix));
  formats::writeTextFile(path, page(parts), formats::Durability::kCached);
  writePictures(folder, prefix, maps);
  return path;
}

bool isInteractive() {
  return !pageScript().empty();
}

}  // namespace report
