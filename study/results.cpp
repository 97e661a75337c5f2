#include "study/results.h"

namespace study {

const char* statusName(StatusCode code) {
  switch (code) {
    case StatusCode::kOutsideMask: return "outside the mask";
    case StatusCode::kComputed: return "computed";
    case StatusCode::kBelowInclusion: return "below the inclusion threshold";
    case StatusCode::kIllDefined: return "ill-defined";
    case StatusCode::kInsideReference: return "inside the reference";
    case StatusCode::kNotFinite: return "not finite";
  }
  return "";
}

std::string mapDescription(tav::MapType type, const std::string& reference) {
  const std::string difference = "difference of the directed influences, " + reference + " on the voxel minus the voxel on " +
                                 reference + " (positive: " + reference + " leads; negative: the voxel leads)";
  switch (type) {
    case tav::REF2VOX: return "influence of " + reference + " on each voxel";
    case tav::VOX2REF: return "influence of each voxel on " + reference;
    case tav::INST: return "instantaneous influence between " + reference + " and each voxel, without direction";
    case tav::DTAV: return difference;
    case tav::DTAV_IT: return difference + ", where the instantaneous influence reaches its lower threshold, else 0";
    case tav::DTAV_RC:
      return "share of the " + difference + " in the sum of its magnitude and the instantaneous influence, -1 to 1";
  }
  return "";
}

const char* mapLabel(tav::MapType type) {
  switch (type) {
    case tav::REF2VOX: return "Ref2Vox";
    case tav::VOX2REF: return "Vox2Ref";
    case tav::INST: return "Inst";
    case tav::DTAV: return "dTAV";
    case tav::DTAV_IT: return "dTAVIT";
    case tav::DTAV_RC: return "dTAVRC";
  }
  return "";
}

}  // namespace study
