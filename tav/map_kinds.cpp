#include "tav/map_kinds.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "tav/map_values.h"

namespace tav {
namespace {

// The raw measures of one voxel.
struct Measures {
  float toVoxel, fromVoxel, instant;
};

// The settings that formulas use.
struct Limits {
  float instLower, rcUpper;
};

// Reds for influence of the reference, greens for influence on it, blues for the instantaneous part.
constexpr MapColours kReds{64, 255}, kGreens{16384, 65280}, kBlues{4194304, 16711680}, kNoColours{0, 0};
constexpr bool kScaled = true, kUnscaled = false;

constexpr MapRange searched(float factor) {
  return {true, factor, 0.0F, nullptr};
}

constexpr MapRange fixed(float lower, float TAV_Pars::*upper) {
  return {false, 0.0F, lower, upper};
}

template <std::size_t kMeasure>
constexpr MapFormula measure() {
  return [](const RawValues& raw, const TAV_Pars&, float*) { return raw.measures[kMeasure]; };
}

// A step of a formula over all voxels. Every step has a loop of its own, in which the compiler takes
// several voxels at once; the settings are copied, so that nothing that it writes can change them.
template <class First>
void begin(First step, const RawValues& raw, Limits limits, float* out) {
  const auto [toVoxel, fromVoxel, instant] = raw.measures;
  for (std::size_t i = 0; i < raw.size; ++i)
    out[i] = step(Measures{toVoxel[i], fromVoxel[i], instant[i]}, limits);
}

template <class Next>
void goOn(Next step, const RawValues& raw, Limits limits, float* out) {
  const auto [toVoxel, fromVoxel, instant] = raw.measures;
  for (std::size_t i = 0; i < raw.size; ++i)
    out[i] = step(out[i], Measures{toVoxel[i], fromVoxel[i], instant[i]}, limits);
}

template <class First, class... Next>
constexpr MapFormula perVoxel(First, Next...) {
  return [](const RawValues& raw, const TAV_Pars& pars, float* buffer) -> const float* {
    const Limits limits{pars.instLowerThres, pars.rcUpperThres};
    begin(First{}, raw, limits, buffer);
    (goOn(Next{}, raw, limits, buffer), ...);
    return buffer;
  };
}

constexpr auto difference = [](const Measures& m, const Limits&) { return m.toVoxel - m.fromVoxel; };

constexpr auto zeroBelowInst = [](float value, const Measures& m, const Limits& limits) {
  return m.instant < limits.instLower ? 0.0F : value;
};

constexpr auto shareWithInst = [](float value, const Measures& m, const Limits&) {
  const float whole = std::fabs(value) + m.instant;
  return whole == 0.0F ? 0.0F : value / whole;
};

constexpr std::array<MapKind, kNrOfMapTypes> kMapKinds = {{
#define TAV_MAP_KIND(name, inDefaultSet, label, positive, negative, scaling, range, ...) \
  {name, #name, label, positive, negative, scaling, range, __VA_ARGS__},
#include "tav/map_kinds.def"
#undef TAV_MAP_KIND
}};

}  // namespace

std::span<const MapKind> mapKinds() {
  return kMapKinds;
}

const MapKind& mapKind(MapType type) {
  return kMapKinds[static_cast<std::size_t>(type)];
}

bool isKnown(MapType type) {
  return static_cast<std::size_t>(type) < kMapKinds.size();
}

std::optional<MapType> findMapType(std::string_view keyword) {
  const auto* const found = std::find_if(kMapKinds.begin(), kMapKinds.end(),
                                         [&](const MapKind& kind) { return kind.keyword == keyword; });
  if (found == kMapKinds.end()) return std::nullopt;
  return found->type;
}

}  // namespace tav
