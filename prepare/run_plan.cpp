#include "prepare/run_plan.h"

#include <fmt/core.h>

#include <algorithm>

#include "formats/nifti.h"
#include "formats/protocol.h"
#include "prepare/cautions.h"
#include "prepare/censor.h"
#include "prepare/confound_table.h"
#include "prepare/cosines.h"
#include "prepare/fingerprint.h"
#include "prepare/image_sidecar.h"
#include "prepare/regress.h"
#include "request/confound_terms.h"
#include "request/problem.h"

namespace study {
namespace {

constexpr int kLeastVolumesOfARun = 4;

// Nothing is joined: that is done per condition, with its own gap.
formats::Protocol readEvents(const std::filesystem::path& file) {
  constexpr double kJoinsNothing = -1e12;
  if (file.empty()) return {};
  return formats::readProtocol(file.string(), kJoinsNothing);
}

std::vector<TimedEvent> timedEvents(const formats::Protocol& protocol, double trSeconds) {
  std::vector<TimedEvent> events;
  for (const formats::ProtocolCondition& condition : protocol.conditions) {
    for (const formats::Interval& interval : condition.intervals) {
      if (protocol.unit == formats::TimeUnit::kMilliseconds) {
        events.push_back({interval.start / 1000.0, (interval.end - interval.start) / 1000.0, condition.name});
      } else {
        events.push_back({(interval.start - 1) * trSeconds, (interval.end - interval.start + 1) * trSeconds,
                          condition.name});
      }
    }
  }
  return events;
}

class RunPlanner {
 public:
  RunPlanner(const RunRequest& run, int inclusionThreshold, std::string version, double highPassSeconds)
      : threshold_(inclusionThreshold), version_(std::move(version)), highPassSeconds_(highPassSeconds) {
    plan_.request = run;
  }

  RunPlan plan() {
    readHeader();
    checkMask();
    readTable();
    const formats::Protocol events = readEvents(plan_.request.events);
    plan_.volumes.events = timedEvents(events, plan_.volumes.trSeconds);
    plan_.eventsCaution = eventsCaution(plan_.request, events.flawed);
    plan_.cautions = runCautions(plan_.request, plan_.volumes.trSeconds, plan_.filters, plan_.confoundNames);
    plan_.vtcName = fmt::format("{}-{}.vtc", bidsSafe(plan_.request.name), key());
    return std::move(plan_);
  }

 private:
  void readHeader();
  void checkMask() const;
  void readTable();
  void censor(const ConfoundTable& table);
  void takeColumns(const ConfoundTable& table);
  void takeCosines();
  void settleRegression();
  std::string key() const;
  static std::string bidsSafe(std::string name) {
    for (char& c : name) {
      if (c == '/' || c == ' ' || c == '\\') c = '_';
    }
    return name;
  }

  int threshold_;
  std::string version_;
  double highPassSeconds_;
  RunPlan plan_;
};

void RunPlanner::readHeader() {
  const RunRequest& run = plan_.request;
  const formats::ImageHeader header = formats::readImageHeader(run.bold.string());
  if (header.volumes < kLeastVolumesOfARun) {
    throw InputError(fmt::format("run '{}': {} has {} volume(s); a time series is needed", run.name,
                                 run.bold.string(), header.volumes));
  }
  plan_.grid = gridOf(header);
  const ImageSidecar sidecar = readImageSidecar(run.bold);
  plan_.filters = sidecar.filters;
  plan_.resolution = sidecar.resolution;
  plan_.volumes.name = run.name;
  plan_.volumes.volumes = header.volumes;
  plan_.volumes.trSeconds = repetitionTime(run.name, run.trSeconds, header.trMs / 1000, sidecar);
}

void RunPlanner::checkMask() const {
  const RunRequest& run = plan_.request;
  if (run.mask.empty()) return;
  const formats::ImageHeader mask = formats::readImageHeader(run.mask.string());
  formats::requireSameGrid(formats::readImageHeader(run.bold.string()), run.bold.string(), mask,
                           run.mask.string());
}

void RunPlanner::readTable() {
  const RunRequest& run = plan_.request;
  plan_.kept.assign(static_cast<std::size_t>(plan_.volumes.volumes), true);
  plan_.volumes.dropped = std::max(0, run.dropVolumes);
  if (!run.confounds.empty()) {
    const ConfoundTable table = readConfounds(run.confounds);
    if (table.volumes() != plan_.kept.size()) {
      throw InputError(
          fmt::format("run '{}': {} has {} rows for the image's {} volumes; they must belong together",
                      run.name, run.confounds.string(), table.volumes(), plan_.kept.size()));
    }
    if (run.dropVolumes == kDropFromConfounds) plan_.volumes.dropped = nonSteadyStateVolumes(table);
    plan_.displacement = findDisplacement(table);
    censor(table);
    takeColumns(table);
  }
  if (plan_.volumes.volumes - plan_.volumes.dropped < kLeastVolumesOfARun) {
    throw InputError(fmt::format("run '{}': dropping {} of {} volumes leaves too few", run.name,
                                 plan_.volumes.dropped, plan_.volumes.volumes));
  }
  takeCosines();
  settleRegression();
  std::fill(plan_.kept.begin(), plan_.kept.begin() + plan_.volumes.dropped, false);
  const int shortest = run.censoring.fdThresholdMm > 0 ? run.censoring.minimumSegment : 1;
  plan_.volumes.kept = keptSegments(plan_.kept, shortest);
}

void RunPlanner::censor(const ConfoundTable& table) {
  if (plan_.request.censoring.fdThresholdMm <= 0) return;
  plan_.kept = volumesBelowThreshold(framewiseDisplacement(table), plan_.request.censoring);
  plan_.censored = static_cast<int>(std::count(
      plan_.kept.begin() + std::min(plan_.volumes.dropped, plan_.volumes.volumes), plan_.kept.end(), false));
}

void RunPlanner::takeColumns(const ConfoundTable& table) {
  plan_.confoundNames = expandConfoundTerms(plan_.request.confoundTerms, table.names, table.file.string());
  plan_.confounds =
      confoundColumns(table, plan_.confoundNames, static_cast<std::size_t>(plan_.volumes.dropped));
}

void RunPlanner::takeCosines() {
  const int volumes = plan_.volumes.volumes - plan_.volumes.dropped;
  const auto cosines = highPassCosines(volumes, plan_.volumes.trSeconds, highPassSeconds_);
  for (std::size_t k = 0; k < cosines.size(); ++k) {
    plan_.confoundNames.push_back(highPassName(k));
    plan_.confounds.push_back(cosines[k]);
  }
}

void RunPlanner::settleRegression() {
  if (plan_.confounds.empty()) return;
  const RunRequest& run = plan_.request;
  const std::vector<bool> used(plan_.kept.begin() + plan_.volumes.dropped, plan_.kept.end());
  plan_.confoundRank = ConfoundRegression(plan_.confounds, used).rank();
  const auto left = std::count(used.begin(), used.end(), true) - plan_.confoundRank - 1;
  if (left >= kLeastVolumesOfARun) return;
  throw InputError(fmt::format(
      "run '{}': regressing {} confounds leaves no degrees of freedom in {} volumes; choose fewer{}",
      run.name, plan_.confoundRank, std::count(used.begin(), used.end(), true),
      highPassSeconds_ > 0 ? ", or a longer period for high_pass" : ""));
}

std::string RunPlanner::key() const {
  Fingerprint key;
  key.add("version", version_.c_str())
      .addFile("bold", plan_.request.bold)
      .addFile("mask", plan_.request.mask);
  key.add("threshold", threshold_).add("tr", plan_.volumes.trSeconds).add("dropped", plan_.volumes.dropped);
  for (std::size_t i = 0; i < plan_.confoundNames.size(); ++i) {
    key.add("confound", plan_.confoundNames[i].c_str());
    for (const double value : plan_.confounds[i]) key.add("value", value);
  }
  std::string kept;
  for (const bool flag : plan_.kept) kept += flag ? '1' : '0';
  return key.add("kept", kept.c_str()).hex();
}

}  // namespace

RunPlan planRun(const RunRequest& run, int inclusionThreshold, const std::string& version,
                double highPassSeconds) {
  return RunPlanner(run, inclusionThreshold, version, highPassSeconds).plan();
}

void requireOneGrid(const std::vector<RunPlan>& runs) {
  for (const RunPlan& run : runs) {
    if (sameGrid(run.grid, runs[0].grid)) continue;
    throw InputError(fmt::format(
        "runs '{}' and '{}' lie on different grids ({}, {}); nothing is resampled here, take runs of one "
        "space and resolution",
        runs[0].request.name, run.request.name, runs[0].request.bold.string(), run.request.bold.string()));
  }
}

}  // namespace study
