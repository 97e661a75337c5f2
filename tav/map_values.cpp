#include "tav/map_values.h"

#include "tav/map_kinds.h"

namespace tav {

const float* unscaledMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars, float* buffer) {
  return mapKind(type).values(raw, pars, buffer);
}

float mapScale(MapType type, const TAV_Pars& pars) {
  return mapKind(type).isScaled ? pars.mapScaleFactor : 1.0F;
}

void computeMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars, float* out) {
  const float* const unscaled = unscaledMapValues(type, raw, pars, out);
  const float scale = mapScale(type, pars);
  for (std::size_t i = 0; i < raw.size; ++i) out[i] = unscaled[i] * scale;
}

}  // namespace tav
