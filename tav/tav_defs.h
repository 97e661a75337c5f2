// Constants shared by the settings file, the parameter log and the maps.
#ifndef TAVMAP_TAV_TAV_DEFS_H
#define TAVMAP_TAV_TAV_DEFS_H

#include <algorithm>
#include <array>
#include <cstddef>

namespace tav {

// What a map holds; map_kinds.def says what each is. The values count from 0 and order the maps of a
// condition.
enum MapType : int {
#define TAV_MAP_KIND(name, ...) name,
#include "tav/map_kinds.def"
#undef TAV_MAP_KIND
};

// The keywords of the settings, by map type.
inline constexpr std::array MAPTYPE_NAMES = {
#define TAV_MAP_KIND(name, ...) #name,
#include "tav/map_kinds.def"
#undef TAV_MAP_KIND
};
inline constexpr int kNrOfMapTypes = static_cast<int>(MAPTYPE_NAMES.size());

// The map types that are computed when nothing is asked for, ascending.
inline constexpr std::array kIsDefaultMapType = {
#define TAV_MAP_KIND(name, inDefaultSet, ...) inDefaultSet,
#include "tav/map_kinds.def"
#undef TAV_MAP_KIND
};
inline constexpr auto DEF_T_MAPTYPES = [] {
  std::array<MapType, std::count(kIsDefaultMapType.begin(), kIsDefaultMapType.end(), true)> types{};
  auto next = types.begin();
  for (int type = 0; type < kNrOfMapTypes; ++type) {
    if (kIsDefaultMapType[static_cast<std::size_t>(type)]) *next++ = static_cast<MapType>(type);
  }
  return types;
}();

inline constexpr std::array<float, 3> DEF_QS = {0.01F, 0.05F, 0.1F};

inline constexpr const char* VERSION_STRING = "1.5";

// Status codes of the dialogs and the computation.
enum Status : int {
  kCancelled = 0,
  kSuccess = 1,
  kInvalidParameters = 2,
  kTerminalError = 3,
};

// The prompt of the engine's own lines in the host's log.
inline constexpr const char* TAV_PROMPT = "// TAV>";

// Keys of TAVPlugin.ini; the trailing "=" belongs to them.
inline constexpr const char* MAPTYPES_INI_STR = "MapTypesComputed=";
inline constexpr const char* QS_INI_STR = "QThresholdsForFDR=";
inline constexpr const char* CV_INI_STR = "CVConstantForFDR=";
inline constexpr const char* ORDER_INI_STR = "AutoRegressionOrder=";
inline constexpr const char* INCL_THRES_INI_STR = "FirstTimePointInclusionThres=";
inline constexpr const char* SHOW_PROG_INI_STR = "ShowVerboseProgressLog=";
inline constexpr const char* N_SURR_REPS_INI_STR = "NumSurrogateSimulations=";
inline constexpr const char* N_DISC_SIMTC_INI_STR = "NumDiscardedSimulatedTimePoints=";
inline constexpr const char* INST_LTHRES_INI_STR = "DTAV_ITInstLowerThres=";
inline constexpr const char* RCMAP_HTHRES_INI_STR = "DTAV_RCUpperThres=";
inline constexpr const char* MAP_SCALE_FACTOR_INI_STR = "MapScaleFactor=";
inline constexpr const char* SEPARATE_SRC_TRG_VTCS_INI_STR = "SeparateSourceTargetVTCs=";

}  // namespace tav

#endif
