#include "study/condition_evidence.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

#include "results/map_findings.h"
#include "results/map_histogram.h"
#include "suitability/reference_spectrum.h"
#include "tav/map_source.h"
#include "tav/vtc_cache.h"

namespace study {
namespace {

using suitability::RunFindings;

constexpr int kLags = 20;
constexpr double kNormal95 = 1.96;

// Single precision is plenty here.
std::vector<double> shortened(std::vector<double> values) {
  for (double& value : values)
    if (std::isfinite(value)) value = withDigitsOf(static_cast<float>(value));
  return values;
}

SearchEvidence searchOf(const tav::SearchCurve& curve) {
  SearchEvidence search{curve.voxels, curve.constant, {}, {}, {}};
  for (const tav::SearchPoint& point : curve.points) {
    search.ranks.push_back(point.rank);
    search.magnitudes.push_back(withDigitsOf(point.magnitude));
    search.p.push_back(point.p);
  }
  return search;
}

std::vector<MapEvidence> mapsOf(const tav::ConditionOutcome& outcome,
                                const std::vector<std::uint8_t>& codes) {
  std::vector<MapEvidence> maps;
  for (const tav::MapOutcome& map : outcome.maps) {
    if (map.thresholds.empty()) continue;
    const tav::ComputedMap null(map.type, outcome.nulls, *outcome.request);
    maps.push_back({map.type, mapHistogram(map.values, codes, null), searchOf(map.search)});
  }
  return maps;
}

std::vector<std::span<const float>> surrogatesOf(const tav::VoiTc& course) {
  std::vector<std::span<const float>> rows;
  const auto volumes = static_cast<std::size_t>(course.surrogates.nCols);
  const float* const first = course.surrogates.elements();
  for (int s = 0; s < course.surrogates.nRows; ++s)
    rows.emplace_back(first + static_cast<std::size_t>(s) * volumes, volumes);
  return rows;
}

SpectrumEvidence spectrumOf(const ConditionRun& run, const tav::VoiTc& course) {
  const RunVolumes& volumes = run.plan->volumes;
  const suitability::ReferenceSpectrum found = suitability::referenceSpectrum(
      run.reference, surrogatesOf(course), run.intervals<suitability::Interval>(), volumes.trSeconds);
  if (found.empty()) return {};
  const int before = volumes.dropped + found.interval.first;
  return {{before + 1, before + found.interval.length},
          shortened(found.hertz),
          shortened(found.reference),
          found.surrogates,
          shortened(found.low),
          shortened(found.median),
          shortened(found.high)};
}

std::size_t countOf(const suitability::OwnModel& model) {
  std::size_t count = 0;
  for (const auto& stretch : model.residuals) count += stretch.size();
  return count;
}

ResidualEvidence residualsOf(const suitability::OwnResiduals& own) {
  ResidualEvidence residuals;
  for (const suitability::LaggedCorrelation& at : suitability::residualCorrelations(own.model, kLags)) {
    if (at.pairs == 0) break;
    residuals.correlations.push_back(at.seen);
    residuals.expected.push_back(at.expected);
  }
  if (residuals.correlations.empty()) return residuals;
  residuals.residuals = countOf(own.model);
  residuals.bound = kNormal95 / std::sqrt(static_cast<double>(residuals.residuals));
  if (!own.test) return residuals;
  residuals.ljungBox = own.test->statistic;
  residuals.degreesOfFreedom = own.test->degrees;
  residuals.p = own.test->p;
  return residuals;
}

MotionEvidence motionOf(const Displacement& displacement) {
  if (displacement.mm.empty()) return {};
  const bool isColumn = displacement.source == DisplacementSource::kColumn;
  return {isColumn ? "column framewise_displacement of the confounds table"
                   : "columns trans_x ... rot_z of the confounds table, rotations on a sphere of 50 mm",
          displacement.mm};
}

void addFindings(const RunFindings& found, int dropped, RunEvidence& run) {
  for (const int volume : found.spikes) run.spikes.push_back(dropped + volume + 1);
  if (found.residuals) run.residuals = residualsOf(*found.residuals);
  if (found.predictability)
    run.predictability = {found.predictability->reference, found.predictability->medianVoxel(),
                          found.predictability->voxels.size()};
}

// Dropped volumes are none.
std::vector<int> censoredVolumes(const RunPlan& run) {
  std::vector<int> volumes;
  for (int v = run.volumes.dropped; v < run.volumes.volumes; ++v)
    if (!run.kept[static_cast<std::size_t>(v)]) volumes.push_back(v + 1);
  return volumes;
}

RunEvidence runEvidence(const PlannedSet& set, const ConditionRun& run, const tav::VoiTc& course,
                        const std::optional<RunFindings>& findings) {
  const RunPlan& plan = *run.plan;
  RunEvidence evidence;
  evidence.run = set.target;
  if (set.source != set.target) evidence.referenceFromRun = set.source;
  evidence.repetitionTime = plan.volumes.trSeconds;
  evidence.volumes = plan.volumes.volumes;
  evidence.droppedVolumes = plan.volumes.dropped;
  evidence.censoredVolumes = censoredVolumes(plan);
  evidence.spectrum = spectrumOf(run, course);
  evidence.motion = motionOf(plan.displacement);
  if (findings) addFindings(*findings, plan.volumes.dropped, evidence);
  return evidence;
}

void countBySlice(const std::vector<std::uint8_t>& codes, const Grid& grid, Evidence& evidence) {
  for (std::vector<std::size_t>& slices : evidence.voxelsBySlice)
    slices.resize(static_cast<std::size_t>(grid.size.z));
  for (std::size_t i = 0; i < codes.size(); ++i)
    ++evidence.voxelsBySlice[codes[i]][static_cast<std::size_t>(grid.size.voxelAt(i)[2])];
}

}  // namespace

Evidence conditionEvidence(const StudyPlan& plan, const tav::ConditionOutcome& outcome,
                           const std::vector<ConditionRun>& runs, const ConditionFindings& findings,
                           const std::vector<std::uint8_t>& codes) {
  Evidence evidence;
  evidence.reference = outcome.voi->name;
  evidence.condition = outcome.cond->name;
  evidence.version = plan.version;
  evidence.maps = mapsOf(outcome, codes);
  const std::vector<PlannedSet>& sets = plan.conditions[static_cast<std::size_t>(outcome.condIndex)].sets;
  for (std::size_t i = 0; i < runs.size(); ++i)
    evidence.runs.push_back(runEvidence(sets[i], runs[i], *outcome.courses[i], findings.runs[i]));
  countBySlice(codes, plan.runs[0].grid, evidence);
  return evidence;
}

}  // namespace study
