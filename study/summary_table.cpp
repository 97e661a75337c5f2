#include "study/summary_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace study {
namespace {

using Cells = std::vector<std::string>;

std::set<tav::MapType> typesIn(const StudyOutcome& outcome) {
  std::set<tav::MapType> types;
  for (const ReferenceOutcome& reference : outcome.references) {
    for (const ConditionRecord& condition : reference.record.conditions) {
      for (const MapResult& map : condition.maps) types.insert(map.type);
    }
  }
  return types;
}

const MapResult* mapOf(const ConditionRecord& condition, tav::MapType type) {
  const auto found = std::find_if(condition.maps.begin(), condition.maps.end(),
                                  [type](const MapResult& map) { return map.type == type; });
  return found == condition.maps.end() ? nullptr : &*found;
}

std::string countText(const MapResult* map) {
  return map == nullptr || map->thresholds.empty() ? "n/a"
                                                   : std::to_string(map->thresholds.back().outsideReference);
}

// One number per condition.
std::string countsText(const Record& record, tav::MapType type) {
  std::string text;
  for (const ConditionRecord& condition : record.conditions)
    text += (text.empty() ? "" : "/") + countText(mapOf(condition, type));
  return text;
}

std::string largestPeak(const Record& record, tav::MapType type) {
  const MapResult* largest = nullptr;
  for (const ConditionRecord& condition : record.conditions) {
    const MapResult* map = mapOf(condition, type);
    if (map == nullptr || !hasPeak(condition, *map)) continue;
    if (largest == nullptr || std::abs(map->peak) > std::abs(largest->peak)) largest = map;
  }
  return largest == nullptr ? "no peak" : peakText(*largest);
}

tav::MapType typeOfPeaks(const std::set<tav::MapType>& types) {
  return types.empty() || types.count(tav::DTAV) > 0 ? tav::DTAV : *types.begin();
}

const char* typeName(tav::MapType type) {
  return tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)];
}

// Of the voxels whose direction was tested, over all conditions.
std::string directionsText(const Record& record) {
  std::size_t tested = 0, supported = 0;
  for (const ConditionRecord& condition : record.conditions) {
    tested += condition.direction.tested();
    supported += condition.direction.supported();
  }
  return tested == 0 ? "n/a" : fmt::format("{} of {}", supported, tested);
}

Cells header(const std::set<tav::MapType>& types) {
  Cells cells = {"reference"};
  for (const tav::MapType type : types) cells.emplace_back(typeName(type));
  cells.emplace_back("directions kept");
  cells.push_back(fmt::format("largest {}", typeName(typeOfPeaks(types))));
  return cells;
}

Cells line(const ReferenceOutcome& reference, const std::set<tav::MapType>& types) {
  Cells cells = {reference.reference + (reference.kept ? " (kept)" : "")};
  if (!reference.done) return {cells[0], fmt::format("FAILED: {}", reference.message)};
  for (const tav::MapType type : types) cells.push_back(countsText(reference.record, type));
  cells.push_back(directionsText(reference.record));
  cells.push_back(largestPeak(reference.record, typeOfPeaks(types)));
  return cells;
}

// The last cell of a line takes what it needs; lines of failures fit no column but the first.
void printTable(const std::vector<Cells>& lines, std::ostream& out) {
  std::vector<std::size_t> widths(lines[0].size(), 0);
  for (const Cells& cells : lines) {
    for (std::size_t i = 0; i + 1 < cells.size(); ++i) widths[i] = std::max(widths[i], cells[i].size());
  }
  for (const Cells& cells : lines) {
    for (std::size_t i = 0; i + 1 < cells.size(); ++i) out << fmt::format("  {:<{}}", cells[i], widths[i]);
    out << "  " << cells.back() << "\n";
  }
}

// The references of one request, and which conditions the numbers of a line belong to.
void printRequest(const std::vector<const ReferenceOutcome*>& references, const std::set<tav::MapType>& types,
                  std::ostream& out) {
  std::vector<Cells> lines = {header(types)};
  std::string conditions;
  for (const ReferenceOutcome* reference : references) {
    lines.push_back(line(*reference, types));
    if (!conditions.empty() || !reference->done) continue;
    for (const ConditionRecord& condition : reference->record.conditions)
      conditions += fmt::format("{}'{}'", conditions.empty() ? "" : " / ", condition.name);
  }
  out << references[0]->request << "\n";
  if (!conditions.empty())
    out << fmt::format("  voxels outside the reference that pass at the largest q: {}\n", conditions);
  printTable(lines, out);
}

// "none" is what PlaceNames calls the background.
std::string placeText(const std::string& label) {
  if (label.empty()) return "";
  return label == "none" ? ", in no label" : " in " + label;
}

}  // namespace

std::string peakText(const MapResult& map) {
  // Fixed notation, but no "-0".
  const auto whole = [](double mm) { return std::isfinite(mm) ? std::nearbyint(mm) + 0.0 : mm; };
  return fmt::format("peak {:.3f} at ({:.0f}, {:.0f}, {:.0f}) mm{}", map.peak, whole(map.peakMm[0]),
                     whole(map.peakMm[1]), whole(map.peakMm[2]), placeText(map.peakLabel));
}

void printSummaryTable(const StudyOutcome& outcome, std::ostream& out) {
  const std::set<tav::MapType> types = typesIn(outcome);
  std::vector<const ReferenceOutcome*> ofRequest;
  for (std::size_t i = 0; i < outcome.references.size(); ++i) {
    const ReferenceOutcome& reference = outcome.references[i];
    ofRequest.push_back(&reference);
    const bool last =
        i + 1 == outcome.references.size() || outcome.references[i + 1].request != reference.request;
    if (!last) continue;
    printRequest(ofRequest, types, out);
    ofRequest.clear();
  }
  out << "Every map, condition and q: *_tavmap.json and *_clusters.tsv in the output folder\n";
}

}  // namespace study
