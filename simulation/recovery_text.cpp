// How a recovery is told: as a table for people, as JSON for programs.
#include <fmt/core.h>

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "simulation/recovery.h"

namespace simulation {
namespace {

using Json = nlohmann::ordered_json;

const char* verdictOf(const RegionRecovery& region) {
  if (region.planted.model.kind == Kind::kReference) return "not judged";
  return region.recovered ? "as planted" : "NOT AS PLANTED";
}

std::string lineOf(const RegionRecovery& region) {
  std::array<char, 256> line{};
  std::snprintf(line.data(), line.size(), "  %-14.40s %-14s %6zu %8.0f%% %8.0f%% %8.0f%% %+10.2f   %s\n",
                region.planted.model.name.c_str(), nameOf(region.planted.model.kind), region.computed,
                100 * region.share[kRef2Vox], 100 * region.share[kVox2Ref], 100 * region.share[kInst],
                region.meanSign, verdictOf(region));
  return line.data();
}

std::string outsideLine(const ConditionRecovery& recovery) {
  std::array<char, 256> line{};
  std::snprintf(line.data(), line.size(), "  %-14s %-14s %6zu %9zu %9zu %9zu %10s   %s\n", "elsewhere",
                "voxels above:", recovery.outsideComputed, recovery.falsePositives[kRef2Vox],
                recovery.falsePositives[kVox2Ref], recovery.falsePositives[kInst], "",
                recovery.outsideQuiet ? "quiet" : "TOO MANY");
  return line.data();
}

Json toJson(const RegionRecovery& region) {
  return {{"label", region.planted.label},
          {"name", region.planted.model.name},
          {"kind", nameOf(region.planted.model.kind)},
          {"voxels", region.computed},
          {"share_ref2vox", region.share[kRef2Vox]},
          {"share_vox2ref", region.share[kVox2Ref]},
          {"share_inst", region.share[kInst]},
          {"mean_sign_dtav", region.meanSign},
          {"recovered", region.recovered}};
}

Json toJson(const ConditionRecovery& recovery) {
  Json regions = Json::array();
  for (const RegionRecovery& region : recovery.regions) regions.push_back(toJson(region));
  return {{"condition", recovery.condition},
          {"recovered", recovery.recovered()},
          {"regions", regions},
          {"elsewhere",
           {{"voxels", recovery.outsideComputed},
            {"above_ref2vox", recovery.falsePositives[kRef2Vox]},
            {"above_vox2ref", recovery.falsePositives[kVox2Ref]},
            {"above_inst", recovery.falsePositives[kInst]},
            {"quiet", recovery.outsideQuiet}}}};
}

}  // namespace

std::string toText(const ConditionRecovery& recovery) {
  std::array<char, 160> head{};
  std::snprintf(head.data(), head.size(), "  %-14s %-14s %6s %9s %9s %9s %10s\n", "region", "planted",
                "voxels", "Ref2Vox", "Vox2Ref", "Inst", "dTAV sign");
  std::string text =
      fmt::format("Condition \"{}\": share of voxels above threshold\n{}", recovery.condition, head.data());
  for (const RegionRecovery& region : recovery.regions) text += lineOf(region);
  text += outsideLine(recovery);
  return fmt::format("{}  Verdict: the planted influences {} recovered.\n", text,
                     recovery.recovered() ? "are" : "are NOT");
}

std::string toJsonText(const std::vector<ConditionRecovery>& recoveries, double q) {
  bool all = true;
  Json conditions = Json::array();
  for (const ConditionRecovery& recovery : recoveries) {
    conditions.push_back(toJson(recovery));
    all = all && recovery.recovered();
  }
  return Json({{"q", q}, {"recovered", all}, {"conditions", conditions}}).dump(2) + '\n';
}

}  // namespace simulation
