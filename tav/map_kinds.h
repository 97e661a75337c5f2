// What distinguishes the kinds of maps, as a table with a row for each (map_kinds.def).
#ifndef TAVMAP_TAV_MAP_KINDS_H
#define TAVMAP_TAV_MAP_KINDS_H

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "tav/tav_pars.h"

namespace tav {

struct RawValues;

// 24-bit colours of a display, red in the lowest byte.
struct MapColours {
  std::int32_t from, to;
};

// The display range: [lower, pars.*upper], or, for a map with thresholds, from the first of them to
// `factor` times it.
struct MapRange {
  bool isSearched;  // has thresholds
  float factor;
  float lower;
  float TAV_Pars::*upper;
};

// Writes a map's values without the scale factor to `buffer` and returns it, or returns what in `raw`
// is these values already.
using MapFormula = const float* (*)(const RawValues& raw, const TAV_Pars& pars, float* buffer);

struct MapKind {
  MapType type;
  const char* keyword;
  const char* label;  // "dTAV IT"
  MapColours positive, negative;
  bool isScaled;
  MapRange range;
  MapFormula values;
};

// All rows; that of a type has its value as index.
[[nodiscard]] std::span<const MapKind> mapKinds();
// The type must be a known one.
[[nodiscard]] const MapKind& mapKind(MapType type);
[[nodiscard]] bool isKnown(MapType type);
// The type with this keyword, in capitals as the table has it.
[[nodiscard]] std::optional<MapType> findMapType(std::string_view keyword);

}  // namespace tav

#endif
