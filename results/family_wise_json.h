// The sidecars of images of family-wise p-values.
#ifndef TAVMAP_RESULTS_FAMILY_WISE_JSON_H
#define TAVMAP_RESULTS_FAMILY_WISE_JSON_H

#include <nlohmann/json_fwd.hpp>

#include "results/results.h"

namespace study {

enum class FamilyWiseImage { kVoxels, kClusters };

// ofMap: the sidecar of the map itself (mapSidecar()), whose sources, model and numbers it shares. The map
// has family-wise results.
[[nodiscard]] nlohmann::ordered_json familyWiseSidecar(nlohmann::ordered_json ofMap, const MapResult& map,
                                                       FamilyWiseImage image);

}  // namespace study

#endif
