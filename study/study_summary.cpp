#include "study/study_summary.h"

#include <algorithm>
#include <cstdio>

namespace study {
namespace {

using Json = nlohmann::ordered_json;

std::string fixed(double value, int digits) {
  char text[48];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

std::string placeOf(const Json& peak) {
  const Json& mm = peak["Millimetres"];
  return "(" + fixed(mm[0], 0) + ", " + fixed(mm[1], 0) + ", " + fixed(mm[2], 0) + ") mm";
}

std::string thresholdText(const Json& threshold) {
  const std::string begin = "q = " + threshold["Q"].dump() + ": ";
  if (!threshold["AnyVoxelPasses"].get<bool>()) return begin + "no voxel survives";
  const auto count = threshold["VoxelsPassingOutsideReference"].get<std::size_t>();
  if (count == 0) return begin + "voxels of the reference alone";
  return begin + std::to_string(count) + (count == 1 ? " voxel at " : " voxels at ") +
         fixed(threshold["Threshold"].get<double>(), 3) + " or more";
}

// One line per map; q-values without any voxel are said once when they all are.
void printMap(const Json& map, std::ostream& out) {
  out << "    " << map["MapType"].get<std::string>() << ": ";
  const Json thresholds = map.value("Thresholds", Json::array());
  const bool none = std::all_of(thresholds.begin(), thresholds.end(),
                                [](const Json& threshold) { return !threshold["AnyVoxelPasses"].get<bool>(); });
  if (thresholds.empty()) {
    out << "no thresholds";
  } else if (none) {
    out << "no voxel survives at any q";
  } else {
    for (std::size_t i = 0; i < thresholds.size(); ++i) out << (i > 0 ? "; " : "") << thresholdText(thresholds[i]);
  }
  out << "; peak " << fixed(map["Peak"]["Value"].get<double>(), 3) << " at " << placeOf(map["Peak"]) << "\n";
}

void printReference(const ReferenceOutcome& reference, std::ostream& out) {
  out << reference.reference << (reference.kept ? " (finished before, kept)" : "") << "\n";
  if (!reference.done) {
    out << "  FAILED: " << reference.message << "\n";
    return;
  }
  for (const Json& condition : reference.record["Conditions"]) {
    out << "  " << condition["Name"].get<std::string>() << ": " << condition["EffectiveVolumes"] << " effective volumes, "
        << condition["Voxels"]["computed"] << " voxels computed\n";
    for (const Json& map : condition["Maps"]) printMap(map, out);
  }
}

}  // namespace

void printSummary(const StudyOutcome& outcome, std::ostream& out) {
  std::string request;
  for (const ReferenceOutcome& reference : outcome.references) {
    if (reference.request != request) out << reference.request << "\n";
    request = reference.request;
    printReference(reference, out);
  }
  for (const std::string& caution : outcome.cautions) out << "WARNING: " << caution << "\n";
  for (const std::string& failure : outcome.failures) out << "FAILED: " << failure << "\n";
}

Json summaryJson(const StudyOutcome& outcome, const std::string& version) {
  Json json = {{"SoftwareVersion", version}, {"Failed", outcome.failed()}, {"References", Json::array()}};
  for (const ReferenceOutcome& reference : outcome.references) {
    Json entry = {{"Request", reference.request}, {"Reference", reference.reference}, {"Done", reference.done},
                  {"Kept", reference.kept}};
    if (reference.done) entry["Record"] = reference.record;
    else entry["Message"] = reference.message;
    json["References"].push_back(std::move(entry));
  }
  json["Warnings"] = outcome.cautions;
  json["Failures"] = outcome.failures;
  if (!outcome.orders.empty()) json["Orders"] = outcome.orders;
  return json;
}

}  // namespace study
