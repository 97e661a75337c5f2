// The thresholds of fdr_thresholds.h without sorting whole maps: only the largest magnitudes are
// selected and sorted, since the walk starts there and seldom goes far. How far is guessed from
// samples of both maps. Exact: a search that is not finished at the end of its tail is repeated
// with one four times as long, at last with everything.
#ifndef TAVMAP_TAV_TAIL_THRESHOLDS_H
#define TAVMAP_TAV_TAIL_THRESHOLDS_H

#include <vector>

#include "tav/map_source.h"
#include "tav/run_observer.h"
#include "tav/run_options.h"

namespace tav {

// The results of searchThresholds() over the maps' magnitudes. Cost: a pass over both maps and a
// linear sort of their tails, which also take twice their memory.
[[nodiscard]] std::vector<MapThreshold> searchTailThresholds(ThresholdRule rule, std::vector<float> qs,
                                                             const MapSource& observed, const MapSource& null,
                                                             int cvConstant);

}  // namespace tav

#endif
