// The engine for a person who moves a reference: the same numbers as `tavmap run`, from series in memory.
#ifndef TAVMAP_LIVE_ENGINE_H
#define TAVMAP_LIVE_ENGINE_H

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "live/live_maps.h"
#include "live/loaded_study.h"
#include "results/direction_result.h"
#include "tav/raw_result.h"
#include "tav/tav_pars.h"

namespace live {

// The plan of one reference and condition, as `tavmap run` would make it of requestFor(). Throws
// study::InputError for an unknown condition, an order that the data are too short for, and what regionOf()
// refuses.
[[nodiscard]] study::StudyPlan planFor(const LoadedStudy& study, const Ask& ask);

// The request whose maps `tavmap run` writes with the very values, p and thresholds of a full result. name:
// of its results. Its paths are absolute.
[[nodiscard]] study::Request requestFor(const LoadedStudy& study, const Ask& ask, const std::string& name);

// One computation at a time: whoever calls sees to that (latest.h).
class Engine {
 public:
  Engine(std::shared_ptr<const LoadedStudy> study, int threads);

  // Throws study::InputError, study::RunError, formats::FileError; tav::Cancelled within milliseconds after
  // `cancel` was set. The family-wise error of whole maps is not part of it: it takes seconds.
  [[nodiscard]] LiveMaps compute(const Ask& ask, Care care, const std::atomic<bool>& cancel);

  // Of a full result with DTAV: per cell a study::DirectionCode, 0 where DTAV does not pass at the largest q.
  // Half a millisecond and thread for each voxel that passes. Throws as compute().
  [[nodiscard]] std::vector<std::uint8_t> directions(const LiveMaps& maps,
                                                     const std::atomic<bool>& cancel) const;

  // The null values of a cell in the map of the last full result, a draw each; empty when that was of another
  // ask, or the cell has none.
  [[nodiscard]] std::vector<float> nullValues(const Ask& ask, std::size_t index, tav::MapType type) const;

  [[nodiscard]] const LoadedStudy& study() const { return *study_; }

 private:
  std::shared_ptr<const LoadedStudy> study_;
  int threads_;
  // Stores that computations take in turn, since fresh ones cost more than the arithmetic of a draft.
  tav::RawResult draftStores_, fullStores_;
  std::vector<std::vector<float>> maps_;
  std::optional<Ask> lastFull_;               // whose draws are in fullStores_
  tav::TAV_Pars lastPars_;                    // with which they become maps
  std::vector<tav::VoxelStatus> lastStatus_;  // per cell
};

}  // namespace live

#endif
