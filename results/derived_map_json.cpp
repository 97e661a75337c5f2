#include "results/derived_map_json.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>

#include "results/record_json.h"
#include "tav/family_wise.h"
#include "tav/map_kinds.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

std::string voxelsDescription(int draws) {
  return fmt::format(
      "family-wise p of each voxel: (1 + the number of {0} whole maps of surrogates whose largest magnitude "
      "reaches the voxel's) / (1 + {0}), over the voxels of this one map outside the reference",
      draws);
}

std::string clustersDescription(const FamilyWiseResult& result) {
  return fmt::format(
      "family-wise p of each voxel's cluster: (1 + the number of {0} whole maps of surrogates whose largest "
      "cluster mass reaches the cluster's) / (1 + {0}); clusters are voxels of one sign that touch, be it at "
      "a corner, with magnitudes of at least {1}, which a share of {2} of the null values reaches; a "
      "cluster's mass is what its voxels exceed that by; 1 outside any cluster",
      result.draws, Json(result.clusterFormingLevel).dump(), Json(result.clusterFormingP).dump());
}

// Empty unless the surrogates' maps are of another kind. what: of them.
std::string nullKindNote(tav::MapType type, const char* what) {
  const tav::MapType null = tav::nullKindOf(type);
  if (null == type) return "";
  return fmt::format(
      "; the {} are those of {}, since no surrogate has the instantaneous influence that gives this map its "
      "values",
      what, tav::mapKind(null).keyword);
}

// Where the procedures come from.
constexpr const char* kPhipsonSmyth =
    "Phipson & Smyth 2010, Statistical Applications in Genetics and Molecular Biology 9, "
    "doi:10.2202/1544-6115.1585";
const Json kLiterature =
    Json::array({"Nichols & Holmes 2002, Human Brain Mapping 15, 1-25, doi:10.1002/hbm.1058", kPhipsonSmyth});

void describeAs(const std::string& what, const MapResult& map, Json& sidecar) {
  sidecar["Description"] = fmt::format("{}. The map: {}", what, sidecar["Description"].get<std::string>());
  sidecar["StatisticFile"] = map.file;
}

}  // namespace

Json thresholdedSidecar(Json ofMap, const MapResult& map) {
  describeAs(fmt::format("the map where it passes outside the reference at q = {}; 0 elsewhere",
                         Json(map.thresholds.back().q).dump()),
             map, ofMap);
  return ofMap;
}

Json nullPSidecar(Json ofMap, const MapResult& map) {
  describeAs(
      "p of each voxel by itself, whatever the other voxels show: (1 + the number of null values of at "
      "least its magnitude) / (1 + the number of null values), those of all voxels together" +
          nullKindNote(map.type, "null values"),
      map, ofMap);
  ofMap["Units"] = "-log10 of a probability; NaN where the status map says anything but \"computed\"";
  ofMap["Literature"] = Json::array({kPhipsonSmyth});
  ofMap.erase("Thresholds");
  ofMap.erase("FamilyWise");
  return ofMap;
}

Json nullZSidecar(Json ofMap, const MapResult& map) {
  describeAs(
      "excess of each voxel over its own null values, for groups: its value over their mean, ranked among "
      "the "
      "same ratio of all null values, each over the mean of the others of its voxel; standard normal where "
      "nothing is related",
      map, ofMap);
  ofMap["Units"] = "standard deviations; NaN where the status map says anything but \"computed\"";
  ofMap.erase("Thresholds");
  ofMap.erase("FamilyWise");
  return ofMap;
}

Json reversedSidecar(Json ofMap, const MapResult& map) {
  describeAs(
      "the map minus that of the same series in reversed time, for groups: 0 on average where the two share "
      "signals "
      "at the same moment alone, whatever their noise and memory; a lead keeps its sign",
      map, ofMap);
  ofMap["Literature"] = Json::array({"doi:10.1016/j.neuroimage.2012.09.036", "doi:10.1109/TSP.2015.2498123"});
  ofMap.erase("Thresholds");
  ofMap.erase("FamilyWise");
  return ofMap;
}

Json familyWiseSidecar(Json ofMap, const MapResult& map, FamilyWiseImage image) {
  const FamilyWiseResult& result = map.familyWise;
  const std::string what =
      image == FamilyWiseImage::kVoxels ? voxelsDescription(result.draws) : clustersDescription(result);
  describeAs(what + nullKindNote(map.type, "whole maps"), map, ofMap);
  ofMap["Units"] = "probability; NaN where the status map says anything but \"computed\"";
  ofMap["Literature"] = kLiterature;
  ofMap.erase("Thresholds");
  if (image == FamilyWiseImage::kClusters) ofMap["FamilyWise"] = familyWiseJson(result, true);
  return ofMap;
}

}  // namespace study
