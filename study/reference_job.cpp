#include "study/reference_job.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "formats/atomic_file.h"
#include "study/engine_host.h"
#include "study/engine_request.h"
#include "study/problem.h"
#include "study/result_writer.h"
#include "tav/tav.h"

namespace study {
namespace {

namespace fs = std::filesystem;

std::vector<const Region*> chosen(const StudyPlan& plan, const std::vector<std::size_t>& indices) {
  std::vector<const Region*> regions;
  for (const std::size_t index : indices) regions.push_back(&plan.regions[index]);
  return regions;
}

// With method "plugin" the references share one sequence of random numbers; otherwise each has its
// own.
tav::RunOptions runOptions(const StudyPlan& plan, const std::vector<std::size_t>& regions) {
  tav::RunOptions options = engineOptions(plan.request.settings);
  if (plan.request.settings.method == Method::kPlugin) return options;
  for (const std::size_t region : regions) options.voiTimeBases.push_back(seedOf(plan, region));
  return options;
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

}  // namespace

std::string logAppendix(const StudyPlan& plan, std::size_t region, const ReferenceResult& result) {
  std::ostringstream out;
  out << "\nMethod " << methodDescription(plan.request.settings.method) << "\n";
  out << "Model order " << plan.order << " (" << orderChoiceName(plan.request.settings.orderChoice) << "), "
      << plan.request.settings.nullDraws << " surrogates per voxel, seed " << plan.seed
      << " (of this reference " << result.seed << "), Tavmap " << plan.version << "\n";
  out << "\nRuns\n";
  describePreparation(plan, out);
  for (const ConditionResult& condition : result.conditions) {
    out << "\nThresholds: " << condition.name << "\n";
    for (const MapResult& map : condition.maps) {
      for (const ThresholdResult& threshold : map.thresholds) out << thresholdLine(map, threshold);
    }
  }
  const std::vector<std::string> cautions = cautionsOf(plan, region);
  if (!cautions.empty()) out << "\n";
  for (const std::string& caution : cautions) out << "WARNING: " << caution << "\n";
  return out.str();
}

void computeReferences(const StudyPlan& plan, const std::vector<std::size_t>& regions,
                       const std::function<void(double)>& progress) {
  fs::create_directories(plan.request.output.folder);
  fs::current_path(plan.workFolder);
  setenv("TAV_TIME_BASE", std::to_string(seedOf(plan, regions[0])).c_str(), 1);
  const double conditions = static_cast<double>(plan.conditions.size() * regions.size());
  int done = 0;
  EngineHost host(plan.runs[0].request.bold, plan.runs[0].vtcName,
                  [&](int percent) { progress((done + percent / 100.0) / conditions); });
  ResultWriter writer(plan, regions, [&](int count) { progress((done = count) / conditions); });
  const tav::TAV_Pars pars = engineRequest(plan.request.settings, plan.order, plan.runs, plan.conditions,
                                           chosen(plan, regions), writer.enginePrefix());
  std::ostringstream errors;
  tav::Computer computer(runOptions(plan, regions), &writer);
  throwStatus(computer.computeTAVs(pars, errors), errors.str());
  if (!host.complaints().empty()) throw RunError(host.complaints());
}

std::string finishedRecord(const StudyPlan& plan, std::size_t region) {
  const OutputNames names(plan.request.output.prefix, plan.regionLabels[region]);
  const fs::path folder = plan.request.output.folder;
  if (!fs::exists(folder / names.record())) return "";
  const std::string text = formats::readTextFile((folder / names.record()).string());
  const auto json = nlohmann::ordered_json::parse(text, nullptr, false);
  if (!json.is_object() || json.value("Key", "") != resultKey(plan, region)) return "";
  const nlohmann::ordered_json files = json.value("Files", nlohmann::ordered_json::object());
  for (const auto& [name, size] : files.items()) {
    std::error_code missing;
    const std::uintmax_t found = fs::file_size(folder / name, missing);
    if (missing || size != found) return "";
  }
  return text;
}

}  // namespace study
