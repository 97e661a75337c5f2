#include <fmt/core.h>

#include <algorithm>
#include <vector>

#include "formats/atomic_file.h"
#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"

namespace report {
namespace {

std::string row(const std::string& head, const std::string& cells) {
  return element("tr", element("th", {{"scope", "row"}}, head) + cells);
}

std::string seedsTable(const StudyOutputs& outputs) {
  std::string rows;
  for (const ReferenceOutputs& reference : outputs.references) {
    const Quotes quotes(reference.json, reference.file);
    rows += row(name(reference.record.reference), element("td", element("code", text(reference.file))) +
                                                      element("td", quotes.number("/Seed")) +
                                                      element("td", quotes.number("/SeedOfReference")) +
                                                      element("td", text(reference.record.model.version)));
  }
  const std::string head =
      "<tr><th scope=\"col\">Reference</th><th scope=\"col\">Record</th><th scope=\"col\">Seed</th><th "
      "scope=\"col\">"
      "Seed of the reference</th><th scope=\"col\">Tavmap</th></tr>";
  return element("div", {{"class", "table-scroll"}},
                 element("table", element("caption", "Where the numbers come from") + element("thead", head) +
                                      element("tbody", rows)));
}

// Each input of any reference once.
std::vector<study::InputRecord> inputsOf(const StudyOutputs& outputs) {
  std::vector<study::InputRecord> inputs;
  for (const ReferenceOutputs& reference : outputs.references)
    for (const study::InputRecord& input : reference.record.inputs)
      if (std::find(inputs.begin(), inputs.end(), input) == inputs.end()) inputs.push_back(input);
  return inputs;
}

std::string inputsTable(const StudyOutputs& outputs) {
  std::string rows;
  for (const study::InputRecord& input : inputsOf(outputs))
    rows += row(text(input.kind), element("td", element("code", text(input.file))) +
                                      element("td", element("code", text(input.sha256))));
  if (rows.empty()) return "";
  return element("div", {{"class", "table-scroll"}},
                 element("table", element("caption", "Inputs and their SHA-256") +
                                      "<thead><tr><th scope=\"col\">What</th><th scope=\"col\">File</th><th "
                                      "scope=\"col\">Checksum</th></tr></thead>" +
                                      element("tbody", rows)));
}

std::string request(const StudyOutputs& outputs) {
  if (outputs.requestFile.empty()) return "";
  const std::string words = fmt::format(
      "The request that made these results, as {} in the output folder. Paths are relative to that folder; "
      "<code>tavmap run</code> on that file, in its place, gives the same results.",
      element("code", text(outputs.requestFile)));
  return element("p", words) + copyButton("request", "the request") +
         element("pre", {{"id", "request"}, {"tabindex", "0"}},
                 text(formats::readTextFile(outputs.path(outputs.requestFile))));
}

}  // namespace

std::string provenanceSection(const StudyOutputs& outputs) {
  if (outputs.references.empty()) return "";
  return section("provenance", "part", 2, "Provenance",
                 seedsTable(outputs) + inputsTable(outputs) + request(outputs));
}

}  // namespace report
