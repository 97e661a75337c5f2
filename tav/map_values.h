// From raw measures to the values of a map, by the formula of its kind.
#ifndef TAVMAP_TAV_MAP_VALUES_H
#define TAVMAP_TAV_MAP_VALUES_H

#include <array>
#include <cstddef>

#include "tav/raw_maps.h"
#include "tav/tav_pars.h"

namespace tav {

// The three raw measures of the same `size` voxels (or draws).
struct RawValues {
  std::array<const float*, kNrOfMeasures> measures;
  std::size_t size;
};

// Writes the values of one map into `out`, which holds raw.size values. The formulas are those of
// map_kinds.def. The type must be a known one.
void computeMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars, float* out);

// The same in two parts: values without the scale factor, which stand in `raw` itself or in `buffer`,
// and the factor (1 for a kind that is not scaled).
[[nodiscard]] const float* unscaledMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars,
                                             float* buffer);
[[nodiscard]] float mapScale(MapType type, const TAV_Pars& pars);

}  // namespace tav

#endif
