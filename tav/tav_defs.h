// Constants shared by the settings file, the parameter log and the maps.
#ifndef TAVMAP_TAV_TAV_DEFS_H
#define TAVMAP_TAV_TAV_DEFS_H

#include <array>

namespace tav {

// What a map holds. The values order the maps of a condition.
enum MapType : int {
  REF2VOX = 0,  // linear feedback from the reference to the voxel
  VOX2REF = 1,  // linear feedback from the voxel to the reference
  INST = 2,     // instantaneous feedback
  DTAV = 3,     // REF2VOX - VOX2REF
  DTAV_IT = 4,  // DTAV where INST reaches a lower threshold, else 0
  DTAV_RC = 5   // share of the directed difference in difference + INST
};
inline constexpr int kNrOfMapTypes = 6;

inline constexpr std::array<const char*, kNrOfMapTypes> MAPTYPE_NAMES = {"REF2VOX", "VOX2REF", "INST",
                                                                         "DTAV",    "DTAV_IT", "DTAV_RC"};
inline constexpr std::array<MapType, kNrOfMapTypes> DEF_T_MAPTYPES = {REF2VOX, VOX2REF, INST,
                                                                      DTAV,    DTAV_IT, DTAV_RC};
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
