// The thresholds of fdr_thresholds.h without sorting whole maps: only the largest magnitudes are
// selected and sorted, since the walk starts there and seldom goes far. How far is guessed from
// samples of both maps. Exact: a search that is not finished at the end of its tail is repeated
// with one four times as long, at last with everything.
#ifndef TAVMAP_TAV_TAIL_THRESHOLDS_H
#define TAVMAP_TAV_TAIL_THRESHOLDS_H

#include <span>
#include <vector>

#include "tav/run_observer.h"
#include "tav/run_options.h"

namespace tav {

// A map's values as they are, in as many pieces as they come: signs, zeros and NaN included.
using MapPieces = std::vector<std::span<const float>>;

// The results of searchThresholds() over the pieces' magnitudes. Cost: a pass over both maps and a
// linear sort of their tails, which also take twice their memory.
[[nodiscard]] std::vector<MapThreshold> searchTailThresholds(ThresholdRule rule, std::vector<float> qs,
                                                             const MapPieces& observed, const MapPieces& null,
                                                             int cvConstant);

}  // namespace tav

#endif
