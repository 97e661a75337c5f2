#include <fmt/core.h>

#include <algorithm>
#include <initializer_list>

#include "report/bibliography.h"
#include "report/group_sections.h"
#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"

namespace report {
namespace {

using study::GroupTestRecord;

constexpr const char* kDifference = "dTAV";  // the maps of group_cells.h
constexpr const char* kReversedDifference = "dTAVrev";

bool anyCell(const GroupOutputs& outputs, bool (*holds)(const GroupTestRecord&)) {
  return std::any_of(outputs.cells.begin(), outputs.cells.end(),
                     [&](const TestedCell& cell) { return holds(cell.record); });
}

class GroupMethods {
 public:
  explicit GroupMethods(const GroupOutputs& outputs) : record_(outputs.cells[0].record) {
    sayValues(outputs);
    sayModel();
    sayError();
  }
  [[nodiscard]] const std::string& words() const { return words_; }
  [[nodiscard]] const std::vector<Work>& works() const { return works_; }

 private:
  void say(const std::string& sentence) { words_ += (words_.empty() ? "" : " ") + sentence; }
  std::string cite(std::initializer_list<Work> works) {
    std::string cited;
    for (const Work work : works) {
      cited += fmt::format("{}{}", cited.empty() ? "" : "; ", citation(work));
      if (std::find(works_.begin(), works_.end(), work) == works_.end()) works_.push_back(work);
    }
    return "(" + cited + ")";
  }

  void sayValues(const GroupOutputs& outputs) {
    const auto isAny = [&](const char* map) {
      return std::any_of(outputs.cells.begin(), outputs.cells.end(),
                         [&](const TestedCell& cell) { return cell.record.map == map; });
    };
    std::string what;
    const auto add = [&](const std::string& words) { what += (what.empty() ? "" : "; ") + words; };
    if (anyCell(outputs, [](const GroupTestRecord& record) { return record.isZ; }))
      add("each measure's excess over the voxel's own surrogates (z of the ratio to their mean, ranked among "
          "all)");
    if (isAny(kDifference)) add("the difference of the two directions");
    if (isAny(kReversedDifference))
      add("that difference minus the one of the series in reversed time " +
          cite({Work::kHaufe2013, Work::kWinkler2016}));
    say(
        fmt::format("Maps of {} participants, made from Geweke's measures of linear feedback {}, were "
                    "compared with Tavmap {}: {}.",
                    record_.rows.size(), cite({Work::kGeweke1982}), record_.version, what));
    if (!record_.within.empty())
      say(fmt::format("Each participant brought the difference {}.", record_.within));
  }

  void sayModel() {
    std::string columns;
    for (const std::string& column : record_.columns) columns += (columns.empty() ? "" : ", ") + column;
    say(fmt::format(
        "At each voxel a linear model with the columns {} was fitted, and it was asked whether {}.", columns,
        record_.question));
    const bool hasNuisances = record_.columns.size() > 1;
    say(fmt::format(
        "Its t{} was compared with that of {} {}{} {}.",
        record_.inference.varianceFwhmMm > 0
            ? fmt::format(", with variances smoothed by {} mm,", record_.inference.varianceFwhmMm)
            : "",
        record_.shuffles, record_.exchange,
        hasNuisances ? " of the residuals of the model without the contrast" : "",
        hasNuisances ? cite({Work::kFreedman1983, Work::kWinkler2014}) : cite({Work::kNichols2002})));
    if (!record_.blocks.empty()) say("Only participants of the same block were exchanged.");
    if (!record_.isTwoSided) say("Only values above the null counted.");
  }

  void sayError() {
    std::string by = "by the maximum over the map " + cite({Work::kNichols2002});
    if (record_.inference.enhance)
      by += ", by threshold-free cluster enhancement " + cite({Work::kSmith2009});
    by += fmt::format(" and by the mass of clusters with |z| above {} ", record_.inference.clusterFormingZ) +
          cite({Work::kBullmore1999});
    say(fmt::format("The family-wise error was held at {} {}, the false discovery rate at the same level {}.",
                    record_.inference.level, by, cite({Work::kBenjamini1995})));
    if (record_.isTailSmooth)
      say("Small p were read from a generalized Pareto distribution fitted to the tail " +
          cite({Work::kWinkler2016Faster}) + ".");
  }

  const GroupTestRecord& record_;
  std::string words_;
  std::vector<Work> works_;
};

void addLimit(const char* title, const std::string& words, std::string& terms) {
  terms += element("dt", text(title)) + element("dd", text(words));
}

}  // namespace

std::string groupMethodsSection(const GroupOutputs& outputs) {
  const GroupMethods methods(outputs);
  return section("methods", "part", 2, "Methods, ready to paste",
                 element("p", {{"id", "methods-text"}, {"class", "methods"}}, text(methods.words())) +
                     copyButton("methods-text", "the paragraph") +
                     element("details", element("summary", "References as BibTeX") +
                                            element("pre", {{"id", "bibtex"}, {"tabindex", "0"}},
                                                    text(bibtex(methods.works()))) +
                                            copyButton("bibtex", "the references")));
}

std::string groupLimitsSection(const GroupOutputs& outputs) {
  std::string terms;
  if (anyCell(outputs, [](const GroupTestRecord& record) {
        return record.map == kDifference && record.contrast == "mean" && record.within.empty();
      })) {
    addLimit("A mean of dTAV is no lead",
             "Signals that reference and voxel share at the same moment give dTAV a sign when one of them is "
             "noisier or "
             "remembers longer, and in every participant the same one. The table of peaks has how many "
             "participants' own "
             "directions survive reversed time; differences between conditions, sessions or groups do not "
             "have this flaw "
             "where noise does not differ between them.",
             terms);
  }
  if (anyCell(outputs, [](const GroupTestRecord& record) { return record.isZ; })) {
    addLimit("What z says",
             "z is the excess over surrogates that keep the reference's spectrum and share nothing with the "
             "voxel. Signals that both "
             "get from elsewhere, such as a task or breathing, count as excess too.",
             terms);
  }
  if (anyCell(outputs, [](const GroupTestRecord& record) { return record.exchange == "sign flips"; })) {
    addLimit("Sign flips rest on symmetry",
             "Sign flips take the participants' values as symmetric about their mean when nothing is there. "
             "Where they "
             "are not, p on the side of the long tail is too small; a warning says where that was seen.",
             terms);
  }
  addLimit("Clusters and enhanced values speak of neighbourhoods",
           "A family-wise p by enhancement or cluster mass says that something lies in the neighbourhood, "
           "not that each of "
           "its voxels does.",
           terms);
  addLimit("One map at a time",
           "Family-wise error and false discovery rate hold over the voxels of one map. Several maps, "
           "references or conditions "
           "on this page are several tests.",
           terms);
  addLimit("Blood vessels",
           "A vascular delay that differs between regions in the same way in every participant looks like "
           "influence.",
           terms);
  return section("limits", "part", 2, "What this does not show", element("dl", {{"class", "limits"}}, terms));
}

std::string groupProvenanceSection(const GroupOutputs& outputs) {
  std::string rows;
  for (const TestedCell& cell : outputs.cells) {
    const Quotes quotes(cell.json, cell.file);
    rows += element("tr", element("th", {{"scope", "row"}}, name(cellTitle(cell.record))) +
                              element("td", element("code", text(cell.file))) +
                              element("td", quotes.number("/Inference/Seed")) +
                              element("td", quotes.number("/Shuffles")) +
                              element("td", quotes.number("/VoxelsTested")) +
                              element("td", text(cell.record.version)));
  }
  const std::string head =
      "<tr><th scope=\"col\">Map</th><th scope=\"col\">Record</th><th scope=\"col\">Seed</th><th "
      "scope=\"col\">Shuffles</th><th scope=\"col\">Voxels tested</th><th scope=\"col\">Tavmap</th></tr>";
  return section(
      "provenance", "part", 2, "Provenance",
      element("div", {{"class", "table-scroll"}},
              element("table", element("caption",
                                       "Where the numbers come from. Each record names the maps of the "
                                       "participants.") +
                                   element("thead", head) + element("tbody", rows))));
}

}  // namespace report
