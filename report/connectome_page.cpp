#include "report/connectome_page.h"

#include <fmt/core.h>

#include <algorithm>

#include "formats/atomic_file.h"
#include "report/connectome_outputs.h"
#include "report/html.h"
#include "report/page.h"
#include "report/sections.h"

namespace report {
namespace {

namespace fs = std::filesystem;

std::string warningsOf(const connectome::Record& record) {
  std::string items;
  for (const std::string& region : record.undefined)
    items += element("li", fmt::format("{} has no usable series, and no edges", name(region)));
  for (const std::string& warning : record.warnings) items += element("li", text(warning));
  return items.empty() ? "" : section("warnings", "part", 2, "Read this first", element("ul", items));
}

void writeFigures(const fs::path& folder, const Figures& figures) {
  fs::create_directories(folder / "figures");
  for (const auto& [file, bytes] : figures)
    formats::writeTextFile((folder / "figures" / file).string(), bytes, formats::Durability::kCached);
}

}  // namespace

std::vector<std::string> connectomesIn(const fs::path& folder) {
  const std::string end = connectome::recordFileOf("");
  std::vector<std::string> prefixes;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const std::string file = entry.path().filename().string();
    if (file.size() > end.size() && file.ends_with(end))
      prefixes.push_back(file.substr(0, file.size() - end.size()));
  }
  std::sort(prefixes.begin(), prefixes.end());
  return prefixes;
}

std::string connectomePageOf(const std::string& prefix) {
  return prefix + "_connectome.html";
}

std::string writeConnectomePage(const fs::path& folder, const std::string& prefix) {
  const ConnectomeOutputs outputs = readConnectomeOutputs(folder, prefix);
  Figures figures;
  PageParts parts;
  const auto add = [&](const char* id, const char* title, const std::string& html) {
    if (html.empty()) return;
    parts.contents.emplace_back(id, title);
    parts.body += html;
  };
  add("warnings", "Read this first", warningsOf(outputs.record));
  add("summary", "Summary", connectomeSummary(outputs));
  add("matrices", "Matrices", connectomeMatrices(outputs, figures));
  add("nodes", "Regions", connectomeNodes(outputs));
  add("edges", "Edges", connectomeEdges(outputs));
  add("limits", "What this does not show", connectomeLimits(outputs));
  add("methods", "Methods", connectomeMethods(outputs));
  parts.title = fmt::format("Tavmap: {}, connectome", prefix);
  parts.lead = element("p", {{"class", "lead"}},
                       fmt::format("Directed influence between {} regions, every one with every other.",
                                   outputs.record.nodes));
  const std::string path = outputs.path(connectomePageOf(prefix));
  formats::writeTextFile(path, page(parts), formats::Durability::kCached);
  writeFigures(folder, figures);
  return path;
}

}  // namespace report
