// Before the voxels of a condition: its description in the log, and the check of its intervals.
// After them: the counters in the log.
#ifndef TAVMAP_TAV_CONDITION_H
#define TAVMAP_TAV_CONDITION_H

#include <ostream>
#include <vector>

#include "tav/run_log.h"
#include "tav/tav_pars.h"
#include "tav/vtc_cache.h"

namespace tav {

class Computer;

struct CheckedCondition {
  std::vector<const VoiTc*> references;  // one per interval set
  unsigned totalTimePoints = 0;
  unsigned effectiveTimePoints = 0;
};

// Describes the sets and their intervals in `log`, and returns a Status: 2 when an interval lies
// outside its VTCs (source and target) or has no more than arOrder volumes, 3 when a time course
// was not fetched; `errors` then says which.
[[nodiscard]] int checkCondition(const Computer& computer, const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                                 const TAV_Pars& request, std::ostream& log, std::ostream& errors,
                                 CheckedCondition& checked);

// Writes the counters and their shares of all voxels to `log` and, when the request wants
// progress, to the run's.
void reportCounts(const VoxelCounts& counts, const TAV_Pars& request, const RunLog& runLog,
                  std::ostream& log);

}  // namespace tav

#endif
