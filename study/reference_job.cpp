#include "study/reference_job.h"

#include <fmt/core.h>

#include <algorithm>
#include <sstream>

#include "formats/file_error.h"
#include "request/problem.h"
#include "results/family_wise_words.h"
#include "results/record_json.h"
#include "study/engine_request.h"
#include "study/result_writer.h"
#include "study/usable_region.h"
#include "tav/tav.h"

namespace study {
namespace {

namespace fs = std::filesystem;

std::vector<const Region*> pointersTo(const std::vector<UsableRegion>& usable) {
  std::vector<const Region*> regions;
  for (const UsableRegion& one : usable) regions.push_back(&one.region);
  return regions;
}

void throwStatus(int status, const std::string& errors) {
  if (status == tav::kSuccess) return;
  if (status == tav::kInvalidParameters) throw InputError(errors);
  throw RunError(errors.empty() ? "the engine stopped with status " + std::to_string(status) : errors);
}

std::string thresholdLine(const MapResult& map, const ThresholdResult& result) {
  std::ostringstream line;
  line << "\t" << tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)] << ", q = " << result.q << ": ";
  if (result.voxelsPassing == 0) {
    line << "no voxel survives\n";
  } else {
    line << result.voxelsPassing << " voxels reach the threshold " << *result.threshold << ", ";
    if (result.outsideReference == result.voxelsPassing) {
      line << "all outside the reference\n";
    } else {
      line << result.outsideReference << " of them outside the reference\n";
    }
  }
  return line.str();
}

// The plug-in's log has neither constant nor draws.
std::string methodText(const Settings& settings) {
  if (settings.method == Method::kPlugin) return "";
  return fmt::format("every q divided by {}, {} draws of the family-wise error, ", settings.fdrConstant,
                     settings.fweDraws);
}

// With method "plugin" the engine's own count says all.
void describeVolumes(const StudyPlan& plan, const ReferenceResult& result, std::ostream& out) {
  if (plan.request.settings.method == Method::kPlugin) return;
  out << "\nEffective volumes (less the order per interval and what regressed confounds cost)\n";
  for (const ConditionResult& condition : result.conditions)
    out << "\t" << condition.name << ": " << condition.effectiveVolumes << " of " << condition.totalVolumes
        << "\n";
}

void describeMap(const MapResult& map, std::ostream& out) {
  for (const ThresholdResult& threshold : map.thresholds) out << thresholdLine(map, threshold);
  if (map.familyWise.empty()) return;
  out << "\t" << tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)] << ", "
      << familyWiseText(map.familyWise) << "\n";
}

void describePreparation(const StudyPlan& plan, std::ostream& out) {
  for (const RunPlan& run : plan.runs) {
    out << "\t" << run.request.name << ": " << run.volumes.volumes << " volumes, TR " << run.volumes.trSeconds
        << " s, " << run.volumes.dropped << " dropped, " << run.censored << " censored, "
        << run.confoundNames.size() << " confounds regressed (" << run.confoundRank
        << " degrees of freedom)\n";
    if (run.volumes.dropped > 0) {
      out << "\t\tvolume v above is volume v + " << run.volumes.dropped << " of the stored image\n";
    }
  }
}

void describeDirections(const ReferenceResult& result, std::ostream& out) {
  bool isAny = false;
  for (const ConditionResult& condition : result.conditions) {
    if (condition.direction.empty()) continue;
    if (!isAny) out << "\nDirections\n";
    isAny = true;
    out << "\t" << condition.name << ": " << directionText(condition.direction, result.name) << "\n";
  }
  if (isAny) out << "\t" << kDirectionNote << ".\n";
}

// An empty map is no result.
bool isComputed(const Record& record) {
  return std::all_of(record.conditions.begin(), record.conditions.end(),
                     [](const ConditionRecord& condition) { return condition.voxelsComputed() > 0; });
}

bool filesAreThere(const Record& record, const fs::path& folder) {
  return std::all_of(record.files.begin(), record.files.end(), [&folder](const auto& file) {
    std::error_code missing;
    const std::uintmax_t size = fs::file_size(folder / file.first, missing);
    return !missing && size == file.second;
  });
}

}  // namespace

std::string logAppendix(const StudyPlan& plan, std::size_t region, const ReferenceResult& result) {
  std::ostringstream out;
  out << "\nMethod " << methodDescription(plan.request.settings.method) << "\n";
  out << "Model order " << plan.order << " (" << orderChoiceName(plan.request.settings.orderChoice) << "), "
      << plan.request.settings.nullDraws << " surrogates per voxel, " << methodText(plan.request.settings)
      << "seed " << plan.seed << " (of this reference " << result.seed << "), Tavmap " << plan.version
      << "\n";
  out << "\nRuns\n";
  describePreparation(plan, out);
  describeVolumes(plan, result, out);
  for (const ConditionResult& condition : result.conditions) {
    out << "\nThresholds: " << condition.name << "\n";
    for (const MapResult& map : condition.maps) describeMap(map, out);
  }
  describeDirections(result, out);
  const std::vector<std::string> cautions = cautionsOf(plan, region, result.warnings);
  if (!cautions.empty()) out << "\n";
  for (const std::string& caution : cautions) out << "WARNING: " << caution << "\n";
  return out.str();
}

tav::RunOptions referenceOptions(const StudyPlan& plan, const std::vector<std::size_t>& regions) {
  tav::RunOptions options = engineOptions(plan.request.settings);
  options.vtcFolder = plan.workFolder.string();
  options.timeBase = seedOf(plan, regions[0]);
  if (plan.request.settings.method == Method::kPlugin) return options;
  options.treatments = courseTreatments(plan.runs);
  for (const std::size_t region : regions) options.voiTimeBases.push_back(seedOf(plan, region));
  return options;
}

void computeReferences(const StudyPlan& plan, const std::vector<std::size_t>& regions,
                       const std::function<void(double)>& progress) {
  fs::create_directories(plan.request.output.folder);
  const std::vector<UsableRegion> usable = usableRegions(plan, regions);
  ResultWriter writer(plan, regions, usable, progress);
  const tav::TAV_Pars pars = engineRequest(plan.request.settings, plan.order, plan.runs, plan.conditions,
                                           pointersTo(usable), plan.request.output.prefix);
  std::ostringstream errors;
  tav::Computer computer(referenceOptions(plan, regions), &writer, &writer.store());
  throwStatus(computer.computeTAVs(pars, errors), errors.str());
}

std::optional<Record> finishedRecord(const StudyPlan& plan, std::size_t region) {
  const OutputNames names(plan.request.output.prefix, plan.regionLabels[region]);
  const fs::path folder = plan.request.output.folder;
  if (!fs::exists(folder / names.record())) return std::nullopt;
  try {
    Record record = readRecordFile((folder / names.record()).string());
    const bool isOurs = record.key == resultKey(plan, region) && isComputed(record);
    if (isOurs && filesAreThere(record, folder)) return record;
  } catch (const formats::FileError&) {  // what is no whole record vouches for nothing
  }
  return std::nullopt;
}

}  // namespace study
