// The formulas by which raw measures become the values of the six map types.
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

// Writes the values of one map into `out`, which holds raw.size values. With r, v, i for the
// measures from the reference, from the voxel and instantaneous:
//   REF2VOX r, VOX2REF v, INST i, DTAV r - v, each times the scale factor;
//   DTAV_IT as DTAV, 0 where i < instLowerThres;
//   DTAV_RC d / (|d| + i) with d = r - v, 0 where i < instLowerThres; 0 where the denominator is
//     exactly 0; values above rcUpperThres become 0, those below -rcUpperThres stay (deliberately
//     one-sided); not scaled.
// Comparisons with a value that is not a number are false, so NaN stays NaN.
void computeMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars, float* out);

// The same in two parts: values without the scale factor, which stand in `raw` itself or in `buffer`,
// and the factor (1 for DTAV_RC).
[[nodiscard]] const float* unscaledMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars,
                                             float* buffer);
[[nodiscard]] float mapScale(MapType type, const TAV_Pars& pars);

}  // namespace tav

#endif
