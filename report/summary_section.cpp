#include <fmt/core.h>

#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"
#include "results/map_words.h"
#include "tav/map_kinds.h"

namespace report {
namespace {

std::string fact(const std::string& term, const std::string& value) {
  return element("dt", term) + element("dd", value);
}

std::string orderFact(const study::Record& record, const Quotes& quotes) {
  const auto choice = record.model.settings.orderChoice;
  const std::string why =
      choice == study::OrderChoice::kFixed
          ? "fixed by the request"
          : fmt::format("chosen by {} over the sampled voxels", study::orderChoiceName(choice));
  return fact("Model order", quotes.number("/ModelOrder") + ", " + why);
}

std::string sourceText(const study::ReferenceSource& source) {
  if (source.kind == "labels") {
    return fmt::format("label {} of {}", source.labelIndex, name(source.image));
  }
  if (source.kind == "mask") return "mask " + name(source.image);
  if (source.kind == "sphere") {
    return fmt::format("sphere of {:.4g} mm around ({:.4g}, {:.4g}, {:.4g}) mm", source.radiusMm,
                       source.centreMm[0], source.centreMm[1], source.centreMm[2]);
  }
  return source.kind == "voxels" ? "voxels that the request lists" : "";
}

std::string referenceFacts(const ReferenceOutputs& reference, const Quotes& quotes) {
  std::string facts = fact(
      "Reference", quotes.number("/ReferenceVoxels") + " voxels; " + sourceText(reference.record.source));
  facts += orderFact(reference.record, quotes);
  facts += fact("Method", study::methodName(reference.record.model.settings.method));
  return element("dl", {{"class", "facts"}}, facts);
}

std::string runFact(const study::RunRecord& run, const Quotes& quotes) {
  std::string value = quotes.number("/VolumesUsed") + " of " + quotes.number("/Volumes") +
                      " volumes used, TR " + quotes.number("/RepetitionTime") + " s";
  if (run.volumesDropped > 0) value += ", " + quotes.number("/VolumesDropped") + " dropped at the start";
  if (run.volumesCensored > 0) value += ", " + quotes.number("/VolumesCensored") + " censored";
  if (run.confoundDegreesOfFreedom > 0)
    value += ", " + quotes.number("/ConfoundDegreesOfFreedom") + " degrees of freedom taken by confounds";
  return fact("Run " + name(run.run), value);
}

std::string conditionFacts(const study::ConditionRecord& condition, const Quotes& quotes) {
  std::string facts = fact("Volumes", quotes.number("/VolumesUsed") + " used, " +
                                          quotes.number("/EffectiveVolumes") + " effective");
  facts += fact("Voxels computed", quotes.number("/Voxels/computed"));
  for (std::size_t i = 0; i < condition.runs.size(); ++i)
    facts += runFact(condition.runs[i], quotes.at(fmt::format("/Runs/{}", i)));
  return element("dl", {{"class", "facts"}}, facts);
}

std::string thresholdCell(const study::ThresholdResult& threshold, const Quotes& quotes) {
  if (threshold.outsideReference == 0) return element("td", {{"class", "none"}}, "no voxel survives");
  return element("td", {{"data-value", std::to_string(threshold.outsideReference)}},
                 quotes.number("/VoxelsPassingOutsideReference") + " voxels<br><small>from " +
                     quotes.number("/Threshold", Digits::kFour) + "</small>");
}

std::string peakCell(const study::ConditionRecord& condition, const study::MapResult& map,
                     const Quotes& quotes) {
  if (!study::hasPeak(condition, map)) return element("td", "n/a");
  std::string cell = quotes.number("/Peak/Value", Digits::kFour) + "<br><small>(" +
                     quotes.number("/Peak/Millimetres/0", Digits::kTenth) + ", " +
                     quotes.number("/Peak/Millimetres/1", Digits::kTenth) + ", " +
                     quotes.number("/Peak/Millimetres/2", Digits::kTenth) + ") mm";
  if (!map.peakLabel.empty()) cell += ", " + name(map.peakLabel == "none" ? "no label" : map.peakLabel);
  return element("td", {{"data-value", std::to_string(map.peak)}}, cell + "</small>");
}

std::string familyWiseCell(const study::MapResult& map, const Quotes& quotes) {
  if (map.familyWise.empty()) return element("td", "n/a");
  std::size_t level = 0;
  while (level < map.familyWise.levels.size() &&
         map.familyWise.levels[level].alpha != study::kFamilyWiseAlpha)
    ++level;
  const Quotes place = quotes.at(fmt::format("/FamilyWise/Levels/{}", level));
  return element("td", place.number("/VoxelsPassing") + " voxels<br><small>" +
                           place.number("/ClustersPassing") + " clusters</small>");
}

// The q-values of the first map that has thresholds.
std::vector<double> qValuesOf(const study::ConditionRecord& condition) {
  for (const study::MapResult& map : condition.maps) {
    std::vector<double> values;
    for (const study::ThresholdResult& threshold : map.thresholds) values.push_back(threshold.q);
    if (!values.empty()) return values;
  }
  return {};
}

std::string headRow(const std::vector<double>& qValues) {
  std::string row = element("th", {{"scope", "col"}, {"data-sort", "text"}}, "Map");
  for (const double q : qValues)
    row += element("th", {{"scope", "col"}, {"data-sort", "number"}}, fmt::format("q = {}", q));
  row += element("th", {{"scope", "col"}}, fmt::format("family-wise p &le; {}", study::kFamilyWiseAlpha));
  row += element("th", {{"scope", "col"}, {"data-sort", "number"}}, "Peak");
  return element("tr", row);
}

std::string mapRow(const study::ConditionRecord& condition, const study::MapResult& map,
                   const std::string& reference, std::size_t columns, const Quotes& quotes) {
  std::string row = element("th", {{"scope", "row"}},
                            std::string(tav::mapKind(map.type).keyword) + "<br><small>" +
                                text(study::mapTitle(map.type, reference)) + "</small>");
  for (std::size_t i = 0; i < columns; ++i) {
    row += i < map.thresholds.size()
               ? thresholdCell(map.thresholds[i], quotes.at(fmt::format("/Thresholds/{}", i)))
               : element("td", "no thresholds");
  }
  return element("tr", row + familyWiseCell(map, quotes) + peakCell(condition, map, quotes));
}

std::string mapTable(const study::Record& record, const study::ConditionRecord& condition,
                     const Quotes& quotes) {
  const std::vector<double> qValues = qValuesOf(condition);
  std::string rows;
  for (std::size_t i = 0; i < condition.maps.size(); ++i)
    rows += mapRow(condition, condition.maps[i], record.reference, qValues.size(),
                   quotes.at(fmt::format("/Maps/{}", i)));
  const std::string caption =
      element("caption",
              "Voxels outside the reference that reach the threshold of each false discovery rate q, and "
              "the map's largest magnitude");
  return element("div", {{"class", "table-scroll"}},
                 element("table", {{"class", "sortable maps"}},
                         caption + element("thead", headRow(qValues)) + element("tbody", rows)));
}

std::string directionLine(const study::Record& record, const study::ConditionRecord& condition) {
  if (condition.direction.empty()) return "";
  return element("p",
                 "Direction: " + text(study::directionText(condition.direction, record.reference)) + ".");
}

std::string conditionSummary(const ReferenceOutputs& reference, std::size_t r, std::size_t c) {
  const study::ConditionRecord& condition = reference.record.conditions[c];
  const Quotes quotes = Quotes(reference.json, reference.file).at(fmt::format("/Conditions/{}", c));
  return section(placeId("summary", r, c), "condition", 4, "Condition " + name(condition.name),
                 conditionFacts(condition, quotes) + mapTable(reference.record, condition, quotes) +
                     directionLine(reference.record, condition));
}

std::string referenceSummary(const ReferenceOutputs& reference, std::size_t r) {
  std::string content = referenceFacts(reference, Quotes(reference.json, reference.file));
  for (std::size_t c = 0; c < reference.record.conditions.size(); ++c)
    content += conditionSummary(reference, r, c);
  return section(placeId("summary", r), "reference", 3, name(reference.record.reference), content);
}

}  // namespace

std::string summarySection(const StudyOutputs& outputs) {
  std::string content;
  for (std::size_t r = 0; r < outputs.references.size(); ++r)
    content += referenceSummary(outputs.references[r], r);
  if (content.empty()) content = element("p", "No reference was computed; the reasons are below.");
  return section("summary", "part", 2, "Summary", content);
}

}  // namespace report
