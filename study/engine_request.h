// The engine's request record, made from a study's plan.
#ifndef TAVMAP_STUDY_ENGINE_REQUEST_H
#define TAVMAP_STUDY_ENGINE_REQUEST_H

#include <map>
#include <string>
#include <vector>

#include "prepare/interval_plan.h"
#include "prepare/regions.h"
#include "prepare/run_plan.h"
#include "request/request.h"
#include "tav/run_options.h"
#include "tav/tav_pars.h"

namespace study {

// regions, runs: must outlive the record, which borrows the voxel lists. VTCs are named as the runs
// name them, relative to the work folder, so that no log depends on where that folder lies.
tav::TAV_Pars engineRequest(const Settings& settings, int order, const std::vector<RunPlan>& runs,
                            const std::vector<PlannedCondition>& conditions,
                            const std::vector<const Region*>& regions, const std::string& resultPathPrefix);

// What was done to the voxels of each run, by the name of its VTC: surrogates go through the same, and rest
// on the volumes that are not censored.
[[nodiscard]] std::map<std::string, tav::CourseTreatment> courseTreatments(const std::vector<RunPlan>& runs);

// What the method asks of the engine beyond the record.
tav::RunOptions engineOptions(const Settings& settings);

}  // namespace study

#endif
