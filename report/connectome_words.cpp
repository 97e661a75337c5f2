#include <fmt/core.h>

#include "report/bibliography.h"
#include "report/connectome_outputs.h"
#include "report/html.h"
#include "report/sections.h"

namespace report {
namespace {

std::string joined(const std::vector<std::string>& names) {
  std::string all;
  for (const std::string& one : names) all += (all.empty() ? "" : ", ") + one;
  return all;
}

std::string term(const std::string& title, const std::string& words) {
  return element("dt", text(title)) + element("dd", text(words));
}

std::string testWords(const connectome::Record& record) {
  if (record.surrogates == 0)
    return "Each edge was tested by the F distribution of the regression; family-wise p are those of "
           "Bonferroni.";
  return fmt::format(
      "Null values came from {} surrogates of every region against every other region: an autoregressive "
      "model of the "
      "region's series, driven by its own residuals under random signs that all regions of a draw share. "
      "Each value was "
      "divided by the mean null value of its edge; p is the share of null values of all edges that reach it, "
      "and "
      "family-wise p compares with the largest value of all edges in each draw ({}; {}).",
      record.surrogates, citation(Work::kNichols2002), citation(Work::kPhipson2010));
}

std::string methodsWords(const connectome::Record& record) {
  std::string words = fmt::format(
      "Directed influence between all pairs of {} regions was computed with Tavmap {} as Geweke's measures "
      "of linear "
      "feedback ({}), from least-squares autoregressive models of order {} of each pair of mean series.",
      record.nodes, record.version, citation(Work::kGeweke1982), record.order);
  if (!record.givenSeries.empty())
    words += fmt::format(" All measures are conditional on {}.", joined(record.givenSeries));
  words += " " + testWords(record);
  words += fmt::format(
      " False discoveries were controlled over all edges of a measure ({}), every adjusted p times {}.",
      citation(Work::kBenjamini1995), record.fdrConstant);
  return words +
         fmt::format(
             " The direction of pairs whose net influence passed was tested with reversed time ({}; {}).",
             citation(Work::kHaufe2013), citation(Work::kWinkler2016));
}

}  // namespace

std::string connectomeLimits(const ConnectomeOutputs& outputs) {
  const connectome::Record& record = outputs.record;
  std::string terms =
      term("Who leads",
           "Unequal noise alone makes the cleaner of two series seem to lead. Only edges whose direction is "
           "supported with reversed time speak for a lead, and about five of a hundred without one do so by "
           "chance. A lag that blood vessels make is a lag as well.");
  if (record.givenSeries.empty())
    terms += term("What others share",
                  "Each pair was looked at alone: a third region that drives both, or that lies "
                  "between them, looks like an influence of one on the other.");
  if (record.surrogates == 0)
    terms += term("Errors that are not white",
                  "These p rest on models whose errors are white and normal; where the order "
                  "is too low for the data they are too small.");
  terms +=
      term("Regions",
           "A region's series is the mean of its voxels; large ones have less noise, and neighbours share "
           "signal through smoothing, which shows as instantaneous influence.");
  return section("limits", "part", 2, "What this does not show", element("dl", {{"class", "limits"}}, terms));
}

std::string connectomeMethods(const ConnectomeOutputs& outputs) {
  std::vector<Work> works = {Work::kGeweke1982, Work::kBenjamini1995, Work::kHaufe2013, Work::kWinkler2016};
  if (outputs.record.surrogates > 0)
    works.insert(works.begin() + 1, {Work::kNichols2002, Work::kPhipson2010});
  return section(
      "methods", "part", 2, "Methods, ready to paste",
      element("p", {{"id", "methods-text"}, {"class", "methods"}}, text(methodsWords(outputs.record))) +
          copyButton("methods-text", "the paragraph") +
          element("details", element("summary", "References as BibTeX") +
                                 element("pre", {{"id", "bibtex"}, {"tabindex", "0"}}, text(bibtex(works)))));
}

}  // namespace report
