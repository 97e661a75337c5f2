#include "tav/map_values.h"

#include <cmath>

namespace tav {
namespace {

void difference(const RawValues& raw, float* out) {
  for (std::size_t i = 0; i < raw.size; ++i) out[i] = raw.measures[0][i] - raw.measures[1][i];
}

void zeroWhereBelow(const float* measure, float threshold, std::size_t size, float* out) {
  for (std::size_t i = 0; i < size; ++i) out[i] = measure[i] < threshold ? 0.0F : out[i];
}

// From differences to their share in difference plus instantaneous feedback, cut above.
void relativeToInstantaneous(const float* instantaneous, float upper, std::size_t size, float* out) {
  for (std::size_t i = 0; i < size; ++i) {
    const float denominator = std::fabs(out[i]) + instantaneous[i];
    const float share = denominator == 0.0F ? 0.0F : out[i] / denominator;
    out[i] = share > upper ? 0.0F : share;
  }
}

}  // namespace

const float* unscaledMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars, float* buffer) {
  if (type <= INST) return raw.measures[static_cast<std::size_t>(type)];
  const float* const instantaneous = raw.measures[2];
  difference(raw, buffer);
  if (type != DTAV) zeroWhereBelow(instantaneous, pars.instLowerThres, raw.size, buffer);
  if (type == DTAV_RC) relativeToInstantaneous(instantaneous, pars.rcUpperThres, raw.size, buffer);
  return buffer;
}

float mapScale(MapType type, const TAV_Pars& pars) {
  return type == DTAV_RC ? 1.0F : pars.mapScaleFactor;
}

void computeMapValues(MapType type, const RawValues& raw, const TAV_Pars& pars, float* out) {
  const float* const unscaled = unscaledMapValues(type, raw, pars, out);
  const float scale = mapScale(type, pars);
  for (std::size_t i = 0; i < raw.size; ++i) out[i] = unscaled[i] * scale;
}

}  // namespace tav
