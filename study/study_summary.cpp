#include "study/study_summary.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "results/family_wise_words.h"
#include "results/record_json.h"
#include "study/summary_table.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

std::string fixed(double value, int digits) {
  char text[48];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

// As in the files, so that a number can be searched for there.
std::string numberText(double value) {
  return Json(value).dump();
}

std::string thresholdText(const ThresholdResult& result) {
  const std::string begin = fmt::format("q = {}: ", numberText(result.q));
  if (result.voxelsPassing == 0 || !result.threshold) return begin + "no voxel survives";
  const std::size_t count = result.outsideReference;
  if (count == 0) return begin + "voxels of the reference alone";
  return fmt::format("{}{}{}{} or more", begin, count, count == 1 ? " voxel at " : " voxels at ",
                     fixed(*result.threshold, 3));
}

// q-values without any voxel are said once when they all are.
std::string thresholdsText(const std::vector<ThresholdResult>& thresholds) {
  if (thresholds.empty()) return "no thresholds";
  const bool none = std::all_of(thresholds.begin(), thresholds.end(),
                                [](const ThresholdResult& result) { return result.voxelsPassing == 0; });
  if (none) return "no voxel survives at any q";
  std::string text;
  for (const ThresholdResult& result : thresholds) text += (text.empty() ? "" : "; ") + thresholdText(result);
  return text;
}

void printMap(const ConditionRecord& condition, const MapResult& map, std::ostream& out) {
  out << "    " << tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)] << ": "
      << thresholdsText(map.thresholds) << "; " << (hasPeak(condition, map) ? peakText(map) : "no peak")
      << "\n";
  if (!map.familyWise.empty()) out << "      " << familyWiseText(map.familyWise) << "\n";
}

void printDirection(const ConditionRecord& condition, const std::string& reference, std::ostream& out) {
  if (condition.direction.tested() > 0)
    out << "    direction: " << directionText(condition.direction, reference) << "\n";
}

bool isAnyDirectionTested(const StudyOutcome& outcome) {
  const auto isTested = [](const ConditionRecord& condition) { return condition.direction.tested() > 0; };
  return std::any_of(outcome.references.begin(), outcome.references.end(), [&](const ReferenceOutcome& one) {
    return std::any_of(one.record.conditions.begin(), one.record.conditions.end(), isTested);
  });
}

void printReference(const ReferenceOutcome& reference, std::ostream& out) {
  out << reference.reference << (reference.kept ? " (finished before, kept)" : "") << "\n";
  if (!reference.done) {
    out << "  not computed: " << reference.message << "\n";
    return;
  }
  for (const ConditionRecord& condition : reference.record.conditions) {
    out << "  " << condition.name << ": " << condition.effectiveVolumes << " effective volumes, "
        << condition.voxelsComputed() << " voxels computed\n";
    for (const MapResult& map : condition.maps) printMap(condition, map, out);
    printDirection(condition, reference.reference, out);
  }
}

void printReferences(const StudyOutcome& outcome, std::ostream& out) {
  std::string request;
  for (const ReferenceOutcome& reference : outcome.references) {
    if (reference.request != request) out << reference.request << "\n";
    request = reference.request;
    printReference(reference, out);
  }
}

}  // namespace

void printSummary(const StudyOutcome& outcome, std::ostream& out) {
  if (outcome.references.size() > kMostReferencesInFull)
    printSummaryTable(outcome, out);
  else
    printReferences(outcome, out);
  if (isAnyDirectionTested(outcome)) out << "NOTE: " << kDirectionNote << "\n";
  for (const std::string& caution : outcome.cautions) out << "WARNING: " << caution << "\n";
  for (const std::string& failure : outcome.failures) out << "not computed: " << failure << "\n";
}

Json summaryJson(const StudyOutcome& outcome, const std::string& version) {
  Json json = {{"SoftwareVersion", version}, {"Failed", outcome.failed()}, {"References", Json::array()}};
  for (const ReferenceOutcome& reference : outcome.references) {
    Json entry = {{"Request", reference.request},
                  {"Reference", reference.reference},
                  {"Done", reference.done},
                  {"Kept", reference.kept}};
    if (reference.done)
      entry["Record"] = recordJson(reference.record);
    else
      entry["Message"] = reference.message;
    json["References"].push_back(std::move(entry));
  }
  json["Warnings"] = outcome.cautions;
  json["Failures"] = outcome.failures;
  for (const OrderOutcome& order : outcome.orders) {
    Json evidence = orderJson(order.evidence);
    evidence["Request"] = order.request;
    json["Orders"].push_back(std::move(evidence));
  }
  return json;
}

}  // namespace study
