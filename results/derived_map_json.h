// The sidecars of images that are made from a map: where it passes, and its p-values.
#ifndef TAVMAP_RESULTS_DERIVED_MAP_JSON_H
#define TAVMAP_RESULTS_DERIVED_MAP_JSON_H

#include <nlohmann/json_fwd.hpp>

#include "results/results.h"

namespace study {

// ofMap throughout: the sidecar of the map itself (mapSidecar()), whose sources, model and numbers are those
// of the image as well.

// Of the map where it passes at the largest q. The map has thresholds.
[[nodiscard]] nlohmann::ordered_json thresholdedSidecar(nlohmann::ordered_json ofMap, const MapResult& map);

// Of the p of single voxels.
[[nodiscard]] nlohmann::ordered_json nullPSidecar(nlohmann::ordered_json ofMap, const MapResult& map);

// Of z against each voxel's own null values.
[[nodiscard]] nlohmann::ordered_json nullZSidecar(nlohmann::ordered_json ofMap, const MapResult& map);

// Of the difference map minus that of reversed time.
[[nodiscard]] nlohmann::ordered_json reversedSidecar(nlohmann::ordered_json ofMap, const MapResult& map);

enum class FamilyWiseImage { kVoxels, kClusters };

// The map has family-wise results.
[[nodiscard]] nlohmann::ordered_json familyWiseSidecar(nlohmann::ordered_json ofMap, const MapResult& map,
                                                       FamilyWiseImage image);

}  // namespace study

#endif
