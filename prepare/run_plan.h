// One run, inspected but not yet read: its grid, its times, what will be left out and regressed,
// and where the prepared data will lie.
#ifndef TAVMAP_PREPARE_RUN_PLAN_H
#define TAVMAP_PREPARE_RUN_PLAN_H

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "prepare/confound_table.h"
#include "prepare/grid.h"
#include "prepare/interval_plan.h"
#include "request/request.h"

namespace study {

struct RunPlan {
  RunRequest request;
  Grid grid;
  RunVolumes volumes;
  std::vector<bool> kept;     // one flag per stored volume
  int censored = 0;           // volumes above the motion threshold, or beside one
  Displacement displacement;  // as the confounds table has it, per stored volume; changes no result
  std::vector<std::string> confoundNames;
  std::vector<std::vector<double>> confounds;  // from the first volume that is not dropped
  int confoundRank = 0;                        // degrees of freedom that the regression costs
  std::vector<std::string> filters;            // found in the sidecar
  std::string resolution;                      // stated there, as JSON; empty: not
  std::vector<std::string> cautions;
  std::string eventsCaution;  // for conditions that are made from events; empty: none
  double scale = 1;           // of the values when imported, see value_size.h
  std::string vtcName;        // file in the work folder, named by the key of its inputs
};

// Looks at headers, sidecar, confounds and events; reads no image data. `version` goes into the key,
// so that another version prepares anew. `highPassSeconds` above 0: cosines slower than this period, over the
// volumes that are not dropped, are confounds too, behind those of the table. Throws InputError, naming file
// and remedy.
[[nodiscard]] RunPlan planRun(const RunRequest& run, int inclusionThreshold, const std::string& version,
                              double highPassSeconds = 0);

// All runs of a request must share one grid. Throws InputError naming both files.
void requireOneGrid(const std::vector<RunPlan>& runs);

}  // namespace study

#endif
