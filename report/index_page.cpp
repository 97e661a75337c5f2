#include "report/index_page.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "formats/table.h"
#include "group/group_names.h"
#include "report/encoding.h"
#include "report/html.h"
#include "report/page.h"
#include "report/quotes.h"
#include "report/reports.h"
#include "report/thumbnail.h"
#include "results/output_names.h"
#include "results/percent_encoding.h"
#include "tav/map_kinds.h"

namespace report {
namespace {

namespace fs = std::filesystem;

constexpr int kIndexColumns = 10;

// The prefix; of names that do not say whose results they are with the folder.
std::string titleOf(const fs::path& folder, const StudyOutputs& outputs) {
  if (outputs.prefix.starts_with("sub-")) return outputs.prefix;
  return (outputs.folder / outputs.prefix).lexically_relative(folder).generic_string();
}

std::string linkTo(const fs::path& folder, const StudyOutputs& outputs) {
  const fs::path file = outputs.folder / study::reportFileOf(outputs.prefix);
  return element("a", {{"href", study::percentEncoded(file.lexically_relative(folder).generic_string())}},
                 name(titleOf(folder, outputs)));
}

std::string failedRow(const std::string& who, const FailedReference& failure) {
  return element("tr", {{"class", "failed"}},
                 element("th", {{"scope", "row"}}, who) + element("td", name(failure.reference)) +
                     element("td", {{"colspan", std::to_string(kIndexColumns - 2)}},
                             "Failed: " + text(failure.message)));
}

std::string counted(const std::string& number, double value) {
  return element("td", {{"data-value", fmt::format("{}", value)}}, number);
}

int censoredOf(const study::ConditionRecord& condition) {
  int censored = 0;
  for (const study::RunRecord& run : condition.runs) censored += run.volumesCensored;
  return censored;
}

std::string passingCell(const study::MapResult& map, const Quotes& quotes) {
  if (map.thresholds.empty()) return element("td", "n/a");
  const std::size_t last = map.thresholds.size() - 1;
  return counted(quotes.number(fmt::format("/Thresholds/{}/VoxelsPassingOutsideReference", last)),
                 static_cast<double>(map.thresholds[last].outsideReference));
}

std::string directionCell(const study::ConditionRecord& condition, const Quotes& quotes) {
  if (condition.direction.empty()) return element("td", "n/a");
  return counted(quotes.number("/Direction/VoxelsSupported"),
                 static_cast<double>(condition.direction.supported()));
}

std::string peakCell(const study::ConditionRecord& condition, const study::MapResult& map,
                     const Quotes& quotes) {
  if (!study::hasPeak(condition, map)) return element("td", "n/a");
  return counted(quotes.number("/Peak/Value", Digits::kFour), map.peak);
}

std::string picture(const Thumbnails& thumbnails, const StudyOutputs& outputs, std::size_t r, std::size_t c) {
  const study::ConditionRecord& condition = outputs.references[r].record.conditions[c];
  const std::string words =
      fmt::format("{} of {}, condition {}: three slices", tav::mapKind(mainMap(condition)->type).keyword,
                  outputs.references[r].record.reference, condition.name);
  return element(
      "td", single("img", {{"class", "thumbnail"}, {"alt", words}, {"src", pngUri(thumbnails.of(r, c))}}));
}

std::string resultRow(const fs::path& folder, const StudyOutputs& outputs, const Thumbnails& thumbnails,
                      std::size_t r, std::size_t c) {
  const ReferenceOutputs& reference = outputs.references[r];
  const study::ConditionRecord& condition = reference.record.conditions[c];
  const study::MapResult* map = mainMap(condition);
  if (map == nullptr) return "";
  const std::string file = (outputs.folder / reference.file).lexically_relative(folder).generic_string();
  const Quotes quotes = Quotes(reference.json, file).at(fmt::format("/Conditions/{}", c));
  const Quotes ofMap = quotes.at(fmt::format("/Maps/{}", map - condition.maps.data()));
  const std::size_t warnings = reference.record.warnings.size();
  return element("tr", element("th", {{"scope", "row"}}, linkTo(folder, outputs)) +
                           element("td", name(reference.record.reference)) +
                           element("td", name(condition.name)) + picture(thumbnails, outputs, r, c) +
                           counted(quotes.number("/EffectiveVolumes"), condition.effectiveVolumes) +
                           counted(std::to_string(censoredOf(condition)), censoredOf(condition)) +
                           counted(std::to_string(warnings), static_cast<double>(warnings)) +
                           passingCell(*map, ofMap) + directionCell(condition, quotes) +
                           peakCell(condition, *map, ofMap));
}

std::string resultRows(const fs::path& folder, const StudyOutputs& outputs) {
  std::string rows;
  if (outputs.references.empty()) return rows;
  const Thumbnails thumbnails(outputs);
  for (std::size_t r = 0; r < outputs.references.size(); ++r)
    for (std::size_t c = 0; c < outputs.references[r].record.conditions.size(); ++c)
      rows += resultRow(folder, outputs, thumbnails, r, c);
  return rows;
}

std::string headOfIndex() {
  std::string row;
  const auto head = [&](const char* words, const char* sort) {
    row += element("th", {{"scope", "col"}, {"data-sort", sort}}, words);
  };
  head("Report", "text");
  head("Reference", "text");
  head("Condition", "text");
  row += element("th", {{"scope", "col"}}, "Main map (DTAV, or the first)");
  head("Effective volumes", "number");
  head("Censored", "number");
  head("Warnings", "number");
  head("Voxels at the largest q", "number");
  head("Direction supported", "number");
  head("Peak", "number");
  return element("thead", element("tr", row));
}

struct PageLink {
  std::string path;  // from the index
  std::string words;
};

// A section of links, empty without any.
std::string linkSection(const char* id, const char* title, const std::vector<PageLink>& links) {
  std::string items;
  for (const PageLink& link : links)
    items += element("li", element("a", {{"href", study::percentEncoded(link.path)}}, name(link.words)));
  if (links.empty()) return "";
  return element("section", {{"id", id}, {"class", "part"}}, element("h2", title) + element("ul", items));
}

// To the pages of tests over participants.
std::vector<PageLink> groupLinks(const fs::path& folder) {
  constexpr std::string_view kEnd = "_report.html", kEndOfEdges = "_connectome.html";
  std::vector<PageLink> links;
  std::error_code missing;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder / study::kGroupFolder, missing)) {
    const std::string file = entry.path().filename().string();
    const std::string way = (fs::path(study::kGroupFolder) / file).generic_string();
    if (file.ends_with(kEnd)) links.push_back({way, file.substr(0, file.size() - kEnd.size())});
    if (file.ends_with(kEndOfEdges))
      links.push_back({way, file.substr(0, file.size() - kEndOfEdges.size()) + ", connectomes"});
  }
  std::sort(links.begin(), links.end(), [](const auto& a, const auto& b) { return a.words < b.words; });
  return links;
}

// To those that were written.
std::vector<PageLink> connectomeLinks(const fs::path& folder, const std::vector<fs::path>& pages) {
  std::vector<PageLink> links;
  for (const fs::path& page : pages) {
    const std::string way = page.lexically_relative(folder).generic_string();
    if (fs::exists(page)) links.push_back({way, page.stem().string()});
  }
  return links;
}

std::string failedRequests(const fs::path& folder) {
  const fs::path file = folder / study::kRequestFailuresFile;
  if (!fs::exists(file)) return "";
  const formats::Table table = formats::Table::read(file.string());
  const std::size_t request = table.require("request"), message = table.require("message");
  std::string rows;
  for (std::size_t row = 0; row < table.rows(); ++row)
    rows += failedRow(name(table.cell(row, request)), {"", table.cell(row, message)});
  return rows;
}

}  // namespace

std::string indexPage(const fs::path& folder, const std::vector<StudyOutputs>& requests,
                      const std::vector<fs::path>& connectomes) {
  std::string failed = failedRequests(folder), done;
  for (const StudyOutputs& outputs : requests) {
    for (const FailedReference& failure : outputs.failures)
      failed += failedRow(linkTo(folder, outputs), failure);
    done += resultRows(folder, outputs);
  }
  const std::string table =
      element("div", {{"class", "table-scroll"}},
              element("table", {{"class", "sortable index"}},
                      element("caption",
                              "Results, what failed first. Every participant has thresholds of their own: "
                              "the counts are no group test.") +
                          headOfIndex() + element("tbody", failed + done)));
  PageParts parts;
  parts.title = "Tavmap: all results";
  parts.lead = element("p", {{"class", "lead"}}, fmt::format("{} reports.", requests.size()));
  const std::string groups = linkSection("groups", "Tests over participants", groupLinks(folder));
  if (!groups.empty()) parts.contents.emplace_back("groups", "Tests over participants");
  const std::string edges = linkSection("connectomes", "Connectomes", connectomeLinks(folder, connectomes));
  if (!edges.empty()) parts.contents.emplace_back("connectomes", "Connectomes");
  parts.contents.emplace_back("results", "Results");
  parts.body = groups + edges +
               element("section", {{"id", "results"}, {"class", "part"}}, element("h2", "Results") + table);
  return page(parts);
}

}  // namespace report
