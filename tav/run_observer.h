// What a run tells while it runs, beside the maps in its store.
#ifndef TAVMAP_TAV_RUN_OBSERVER_H
#define TAVMAP_TAV_RUN_OBSERVER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "tav/map_values.h"
#include "tav/null_maxima.h"
#include "tav/search_curve.h"
#include "tav/tav_pars.h"

namespace tav {

struct VoiTc;

// Why a voxel has the values that it has.
enum class VoxelStatus : std::uint8_t {
  kComputed = 0,
  kBelowInclusion = 1,  // its first volume does not exceed the inclusion threshold; values 0
  kIllDefined = 2,      // a model could not be fitted; values 0
  kNotFinite = 3        // fitted, and at least one measure is infinite or not a number
};

struct VoxelCounts {
  int skipped = 0;               // below the inclusion threshold
  int illDefined = 0;            // failed fits
  int surrogatesIllDefined = 0;  // failed null fits, counted per draw
};

// The threshold of one map for one q.
struct MapThreshold {
  float q;
  // What the map's table holds: +infinity when the step-up rule finds no voxel, 0 when every
  // non-zero voxel passes or nothing could be searched.
  float threshold;
  // Voxels whose magnitude reaches the threshold. 0 when the search ended without any, whatever
  // the threshold: a walk that is settled at its first candidate leaves that candidate as
  // threshold although it did not meet the bound.
  std::size_t nrPassing;
  [[nodiscard]] bool anyPasses() const { return nrPassing > 0; }
};

// Per map kind with thresholds, the maxima over whole null maps of one reference and condition.
using FamilyWise = std::map<MapType, NullMaxima>;

struct MapOutcome {
  MapType type;
  const float* values;                   // [z][y][x], in the store
  std::vector<MapThreshold> thresholds;  // by ascending q; empty for a kind without any
  std::vector<float> nullP = {};  // per voxel; empty unless asked for and for a kind without thresholds
  SearchCurve search = {};        // likewise
  std::vector<float> nullZ = {};  // per voxel; empty unless asked for, with one draw, and for other kinds
};

struct ConditionOutcome {
  const TAV_VOI_Pars* voi = nullptr;
  const TAV_Cond_Pars* cond = nullptr;
  int condIndex = 0;
  unsigned totalTimePoints = 0;
  unsigned effectiveTimePoints = 0;  // total - order per interval
  VoxelCounts counts;
  std::vector<VoxelStatus> status;  // [z][y][x]
  std::vector<MapOutcome> maps;     // in map-type order
  FamilyWise familyWise;            // empty unless it was asked for
  // Raw null measures of all draws, in pieces; 0 where there is none. Valid during the call.
  std::vector<RawValues> nulls;
  const TAV_Pars* request = nullptr;  // with which they become maps
  std::vector<const VoiTc*> courses;  // of the reference, with its surrogates, one per set of the condition
};

// Called on the thread of the run. Everything passed is valid during the call only.
class RunObserver {
 public:
  virtual ~RunObserver() = default;
  // For the user: one or more lines, HTML fragments, without the last line end. Most of them come only
  // when the request wants progress.
  virtual void onLog(const std::string& /*text*/) {}
  // How much of a condition's voxels is done: 0, 10, ... 100 for each, also when they were computed
  // along with an earlier reference; a single slice is 0 alone.
  virtual void onProgress(int /*percent*/) {}
  // How much of a condition's whole maps of surrogates is done, after its voxels: up to 100.
  virtual void onNullMaps(int /*percent*/) {}
  // After the surrogates are made: every reference course with its model and its surrogates.
  virtual void onReferences(const std::vector<std::unique_ptr<VoiTc>>& /*voiTcs*/) {}
  // After a condition's maps are in the store.
  virtual void onCondition(const ConditionOutcome& /*outcome*/) {}
  // After a reference's map set and log are saved.
  virtual void onVoi(const TAV_VOI_Pars& /*voi*/) {}
};

}  // namespace tav

#endif
