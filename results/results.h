// What the computation of one reference region brought, beside the images: plain values, ready for
// sidecars, summaries and later reports.
#ifndef TAVMAP_RESULTS_RESULTS_H
#define TAVMAP_RESULTS_RESULTS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "request/request.h"
#include "request/volume_ranges.h"
#include "results/direction_result.h"
#include "results/family_wise_result.h"
#include "results/map_words.h"

namespace study {

struct ThresholdResult {
  double q = 0;
  std::optional<double> threshold;  // unset: no voxel survives, or there is none to find
  std::size_t voxelsPassing = 0;  // as the search counts them: with method "plugin" inside the reference too
  std::size_t outsideReference = 0;  // of them: a voxel of the reference is no finding
  bool operator==(const ThresholdResult&) const = default;
};

struct MapResult {
  tav::MapType type = tav::REF2VOX;
  std::string file;                         // image, relative to the output folder
  std::vector<ThresholdResult> thresholds;  // ascending q; empty: this map has none
  double peak = 0;                          // largest magnitude with its sign
  std::array<int, 3> peakVoxel{};           // indices from 0
  std::array<double, 3> peakMm{};
  FamilyWiseResult familyWise{};  // empty: none was asked for, or this kind of map has none
  std::string peakLabel{};        // name of the peak's place; empty when places have none
  // Relative to the output folder, empty without thresholds: which voxels pass at which q, and the map where
  // they pass at the largest.
  std::string passingFile{}, thresholdedFile{};
  std::string pFile{};         // p of single voxels; empty: none were asked for
  std::string reversedFile{};  // of DTAV: minus that of reversed time; empty with method "plugin"
  std::string zFile{};  // z against each voxel's own null values; empty for differences and with one draw
  bool operator==(const MapResult&) const = default;
};

struct SetResult {  // one run, or a pair, of a condition
  std::string source, target;
  std::vector<VolumeRange> ranges;  // volumes of the stored image, from 1
  int effectiveVolumes = 0;
};

// Codes of the status map.
enum class StatusCode : std::uint8_t {
  kOutsideMask = 0,
  kComputed = 1,
  kBelowInclusion = 2,
  kIllDefined = 3,
  kInsideReference = 4,
  kNotFinite = 5
};
inline constexpr std::size_t kStatusCodes = 6;
using StatusCounts = std::array<std::size_t, kStatusCodes>;  // voxels by code
const char* statusName(StatusCode code);

struct ConditionResult {
  std::string name;
  std::vector<SetResult> sets;
  int totalVolumes = 0, effectiveVolumes = 0;
  StatusCounts statusCounts{};
  std::string statusFile;
  int surrogatesIllDefined = 0;
  std::vector<MapResult> maps;
  DirectionResult direction = {};
  std::string clustersFile = {};  // clusters of the voxels that pass; empty: no map has thresholds
  std::string evidenceFile = {};  // evidence.h
};

struct ReferenceResult {
  std::string name;
  int voxels = 0;
  std::uint32_t seed = 0;
  std::vector<ConditionResult> conditions;
  std::vector<std::string> warnings = {};  // about the data, beside those of the plan
};

}  // namespace study

#endif
