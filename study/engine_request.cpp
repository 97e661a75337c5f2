#include "study/engine_request.h"

#include <algorithm>

#include "prepare/course_filter.h"

namespace study {
namespace {

const RunPlan& runNamed(const std::vector<RunPlan>& runs, const std::string& name) {
  return *std::find_if(runs.begin(), runs.end(),
                       [&](const RunPlan& run) { return run.request.name == name; });
}

void takeSettings(const Settings& settings, tav::TAV_Pars& pars) {
  pars.mapTypes = settings.mapTypes;
  pars.qThresholds.clear();
  for (const double q : settings.qValues) pars.qThresholds.push_back(static_cast<float>(q));
  pars.cvConstant = settings.cvConstant;
  pars.firstTpInclThres = static_cast<std::uint16_t>(settings.inclusionThreshold);
  pars.nSurrogateSims = settings.surrogates;
  pars.nDiscardedSimTps = settings.discardedTimePoints;
  pars.instLowerThres = static_cast<float>(settings.instantaneousLower);
  pars.rcUpperThres = static_cast<float>(settings.rcUpper);
  pars.mapScaleFactor = static_cast<float>(settings.mapScale);
}

tav::TAV_VTC_intv_set intervalSet(const PlannedSet& planned, const std::vector<RunPlan>& runs) {
  tav::TAV_VTC_intv_set set;
  const RunPlan& target = runNamed(runs, planned.target);
  set.srcVtcName = runNamed(runs, planned.source).vtcName;
  set.trgVtcName = target.vtcName;
  // A pair may drop different numbers of volumes; the engine has one numbering for both, so the
  // plan has made them equal (planRuns()).
  for (const VolumeRange& range : shifted(planned.ranges, -target.volumes.dropped)) {
    set.intervals.push_back({range.first, range.last});
  }
  return set;
}

tav::TAV_VOI_Pars voiOf(const Region& region, std::size_t index) {
  tav::TAV_VOI_Pars voi;
  voi.name = region.name;
  voi.voiIndex = static_cast<std::int32_t>(index);
  voi.nVoxels = region.voxels();
  voi.voxels = region.coordinates.data();
  return voi;
}

void takeGeometry(const std::vector<RunPlan>& runs, tav::TAV_Pars& pars) {
  pars.vtcXStart = pars.vtcYStart = pars.vtcZStart = 0;
  pars.vtcXEnd = runs[0].grid.size.x;
  pars.vtcYEnd = runs[0].grid.size.y;
  pars.vtcZEnd = runs[0].grid.size.z;
  pars.vtcResolution = 1;
  for (const RunPlan& run : runs) {
    pars.vtcMaxNrOfVolumes = std::max(pars.vtcMaxNrOfVolumes, run.volumes.volumes - run.volumes.dropped);
  }
}

std::vector<simo::Stretch> stretchesOf(const std::vector<bool>& kept) {
  std::vector<simo::Stretch> stretches;
  for (int t = 0; t < static_cast<int>(kept.size()); ++t) {
    if (!kept[static_cast<std::size_t>(t)]) continue;
    if (stretches.empty() || stretches.back().end != t) stretches.push_back({t, t});
    stretches.back().end = t + 1;
  }
  return stretches;
}

tav::CourseTreatment treatmentOf(const RunPlan& run) {
  const std::vector<bool> kept(run.kept.begin() + run.volumes.dropped, run.kept.end());
  tav::CourseTreatment treatment{stretchesOf(kept), {}};
  CourseFilter filter(static_cast<int>(kept.size()), 0, run.confounds, kept);
  if (!filter.changesNothing())
    treatment.apply = [filter](float* course) mutable { filter.apply(course); };  // each copy has its own
  return treatment;
}

}  // namespace

tav::TAV_Pars engineRequest(const Settings& settings, int order, const std::vector<RunPlan>& runs,
                            const std::vector<PlannedCondition>& conditions,
                            const std::vector<const Region*>& regions, const std::string& resultPathPrefix) {
  tav::TAV_Pars pars;
  takeSettings(settings, pars);
  takeGeometry(runs, pars);
  pars.arOrder = order;
  pars.resultPathPrefix = resultPathPrefix;
  for (const PlannedCondition& condition : conditions) {
    tav::TAV_Cond_Pars& cond = pars.conds.emplace_back();
    cond.name = condition.name;
    for (const PlannedSet& set : condition.sets) {
      cond.vtcIntvSets.push_back(intervalSet(set, runs));
      pars.separateSrcTrgVtcs = pars.separateSrcTrgVtcs || set.source != set.target;
    }
  }
  for (std::size_t i = 0; i < regions.size(); ++i) pars.vois.push_back(voiOf(*regions[i], i));
  return pars;
}

std::map<std::string, tav::CourseTreatment> courseTreatments(const std::vector<RunPlan>& runs) {
  std::map<std::string, tav::CourseTreatment> treatments;
  for (const RunPlan& run : runs) treatments[run.vtcName] = treatmentOf(run);
  return treatments;
}

tav::RunOptions engineOptions(const Settings& settings) {
  tav::RunOptions options;
  if (settings.method == Method::kPlugin) return options;
  options.fitForm = tav::FitForm::kLeastSquares;
  options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
  options.nullDraws = settings.nullDraws;
  options.thresholdRule = tav::ThresholdRule::kStepUp;
  options.searchOutsideReference = true;
  options.fdrConstant = settings.fdrConstant;
  options.fweDraws = settings.fweDraws;
  options.nullP = true;
  options.nullZ = true;
  options.searchCurve = true;
  return options;
}

}  // namespace study
