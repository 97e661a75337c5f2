// The records that describe one run completely: settings, reference regions, conditions with
// their files and intervals, and the geometry that all files share. Plain values; copies are deep
// except for the pointers marked non-owning.
#ifndef TAVMAP_TAV_TAV_PARS_H
#define TAVMAP_TAV_TAV_PARS_H

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "io/grid_size.h"
#include "tav/tav_defs.h"

namespace tav {

struct VtcFile;

// Volumes first ... last of one VTC, inclusive, counted from 1.
struct TAV_intv {
  std::int32_t first;
  std::int32_t last;
};

// One VTC, or a source/target pair, with its intervals.
struct TAV_VTC_intv_set {
  std::string srcVtcName;  // the reference's time course is taken from here
  std::string trgVtcName;  // the voxels of this one are mapped
  std::vector<TAV_intv> intervals;
  // Non-owning; set while a computation has the files open.
  mutable VtcFile* srcVtc = nullptr;
  mutable VtcFile* trgVtc = nullptr;
};

struct TAV_Cond_Pars {
  std::string name;
  std::vector<TAV_VTC_intv_set> vtcIntvSets;
};

// One reference region.
struct TAV_VOI_Pars {
  std::string name;
  std::int32_t voiIndex = 0;  // 0-based, in the host's VOI list
  std::int32_t nVoxels = 0;
  const std::int32_t* voxels = nullptr;  // 3 x nVoxels coordinates, non-owning
  std::int32_t talCoords = 0;            // non-zero: Talairach coordinates
};

struct TAV_Pars {
  TAV_Pars();

  std::set<MapType> mapTypes;
  std::vector<float> qThresholds;  // each in (0, 1)
  std::int32_t cvConstant = 2;     // 1: independent or positively dependent; 2: any dependence
  std::int32_t arOrder = 1;        // 1 ... 20
  std::string resultPathPrefix;
  std::uint16_t firstTpInclThres = 100;  // a voxel's first value must exceed it
  bool showVerboseProgress = true;
  std::int32_t nSurrogateSims = 1000;   // 10 ... 10000
  std::int32_t nDiscardedSimTps = 100;  // 10 ... 1000
  float instLowerThres = 0.05F;
  float rcUpperThres = 0.7F;
  bool separateSrcTrgVtcs = false;
  float mapScaleFactor = 100.0F;

  std::vector<TAV_VOI_Pars> vois;
  std::vector<TAV_Cond_Pars> conds;

  // Geometry common to all VTCs; -1: not yet known.
  std::int32_t vtcXStart = -1, vtcXEnd = -1;
  std::int32_t vtcYStart = -1, vtcYEnd = -1;
  std::int32_t vtcZStart = -1, vtcZEnd = -1;
  std::int32_t vtcResolution = -1;
  std::int32_t vtcMaxNrOfVolumes = -1;

  // Voxel grid, derived by tav::Computer::Init; not read before.
  mutable std::int32_t dimX, dimY, dimZ;
};

// The voxel grid that Computer::Init derived.
[[nodiscard]] inline io::GridSize gridOf(const TAV_Pars& request) {
  return {request.dimX, request.dimY, request.dimZ};
}

}  // namespace tav

#endif
