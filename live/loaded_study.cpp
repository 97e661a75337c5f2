#include "live/loaded_study.h"

#include <fmt/core.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ostream>
#include <sstream>

#include "formats/vtc_sidecar.h"
#include "io/cnvtcfile.h"
#include "live/stand_in_reference.h"
#include "prepare/label_files.h"
#include "request/problem.h"
#include "study/engine_request.h"
#include "study/study_run.h"
#include "tav/at_once.h"

namespace live {
namespace {

constexpr double kImportShare = 0.7;  // of the time that loading takes, where runs are new

class ImportProgress : public study::ProgressBar {
 public:
  explicit ImportProgress(const LoadOptions& options)
      : ProgressBar(nothing_, study::ProgressStyle::kQuiet), options_(options) {}
  void onProgress(double done, double total) override {
    if (options_.progress && total > 0) options_.progress(kImportShare * done / total, "runs are made ready");
  }

 private:
  std::ostringstream nothing_;
  const LoadOptions& options_;
};

study::StudyPlan importedPlan(const study::Request& request, const LoadOptions& options) {
  ImportProgress progress(options);
  study::StudyOptions run;
  run.program = options.program;
  run.version = options.version;
  run.jobs = options.jobs;
  run.importsOnly = true;
  study::StudyOutcome outcome = study::runStudy({request}, run, progress);
  if (outcome.prepared.empty() || outcome.failed())
    throw study::RunError(fmt::format("{}: its runs could not be made ready: {}", request.title,
                                      fmt::join(outcome.failures, "; ")));
  return std::move(outcome.prepared.front());
}

std::size_t megabytes(std::size_t bytes) {
  return (bytes + 999'999) / 1'000'000;
}

std::size_t bytesNeeded(const study::StudyPlan& plan) {
  std::size_t bytes = 0;
  for (const study::RunPlan& run : plan.runs)
    bytes += std::filesystem::file_size(plan.workFolder / run.vtcName);
  return bytes;
}

void requireRoom(const study::StudyPlan& plan, const LoadOptions& options) {
  const std::size_t needed = bytesNeeded(plan);
  if (options.progress)
    options.progress(kImportShare, fmt::format("{} MB of time series are read", megabytes(needed)));
  if (needed <= options.mostBytes) return;
  throw study::InputError(fmt::format(
      "{}: its time series need {} MB of memory, and {} MB are allowed; explore fewer runs, a coarser "
      "grid or a mask, or allow more with --mem",
      plan.request.title, megabytes(needed), megabytes(options.mostBytes)));
}

void readSeries(LoadedStudy& study, const LoadOptions& options) {
  const double runs = static_cast<double>(study.plan.runs.size());
  for (const study::RunPlan& run : study.plan.runs) {
    std::ostringstream errors;
    const std::string path = (study.plan.workFolder / run.vtcName).string();
    auto vtc = tav::LoadedVtc::read(path, errors, options.cancel);
    if (vtc == nullptr) throw study::RunError(errors.str());
    study.bytes += vtc->bytes();
    study.vtcs[run.vtcName] = std::move(vtc);
    const auto sidecar = formats::readVtcSidecar(path);
    study.shifts[run.vtcName] = sidecar ? sidecar->shift : 0;
    const double share = static_cast<double>(study.vtcs.size()) / runs;
    if (options.progress) options.progress(kImportShare + (1 - kImportShare) * share, "time series are read");
  }
}

// As the engine sees it: the first value exceeds the threshold.
bool isIncluded(const tav::LoadedVtc& vtc, std::size_t voxel, int threshold) {
  const std::size_t at = voxel * static_cast<std::size_t>(vtc.header().nrOfVolumes);
  if (vtc.floats() != nullptr) return vtc.floats()[at] > static_cast<float>(threshold);
  return vtc.shorts()[at] > threshold;
}

std::vector<std::uint32_t> includedCells(const LoadedStudy& study) {
  const int threshold = study.plan.request.settings.inclusionThreshold;
  std::vector<std::uint32_t> cells;
  for (std::size_t voxel = 0; voxel < study.plan.space.grid.size.voxels(); ++voxel) {
    const bool any = std::any_of(study.vtcs.begin(), study.vtcs.end(),
                                 [&](const auto& vtc) { return isIncluded(*vtc.second, voxel, threshold); });
    if (any) cells.push_back(static_cast<std::uint32_t>(voxel));
  }
  return cells;
}

// The first entry with a label image names it.
std::optional<Atlas> readAtlas(const study::StudyPlan& plan) {
  const auto& entries = plan.request.references;
  const auto found = std::find_if(entries.begin(), entries.end(), [](const study::ReferenceRequest& entry) {
    return entry.kind == study::ReferenceKind::kLabels;
  });
  if (found == entries.end()) return std::nullopt;
  Atlas atlas{*found, study::readLabels(*found, plan.request.title), {}};
  atlas.entry.allLabels = true;
  atlas.entry.labels = {};
  for (study::Region& region : study::labelRegions(atlas.entry, atlas.image, plan.space, plan.request.title))
    atlas.regions.emplace(region.source.label, std::move(region));
  return atlas;
}

}  // namespace

std::shared_ptr<const LoadedStudy> loadStudy(const study::Request& request, const LoadOptions& options) {
  if (request.settings.method == study::Method::kPlugin)
    throw study::InputError(fmt::format(
        "{}: explored are maps of method \"calibrated\"; leave method \"plugin\" out", request.title));
  const bool hasReference = !request.references.empty();
  const auto study = std::make_shared<LoadedStudy>();
  study->plan = importedPlan(hasReference ? request : withStandIn(request), options);
  tav::stopIf(options.cancel);
  requireRoom(study->plan, options);
  if (hasReference) study->atlas = readAtlas(study->plan);
  study->plan.regions.clear();
  study->plan.regionLabels.clear();
  study->plan.request.references.clear();
  study->treatments = study::courseTreatments(study->plan.runs);
  readSeries(*study, options);
  study->cells = includedCells(*study);
  return study;
}

}  // namespace live
