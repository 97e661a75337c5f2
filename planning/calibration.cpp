#include "planning/calibration.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include "formats/claimed_folder.h"
#include "planning/miniature.h"
#include "planning/work_rates.h"
#include "prepare/prepare.h"
#include "prepare/value_size.h"
#include "study/reference_job.h"

namespace planning {
namespace {

namespace fs = std::filesystem;

// Of the time that a measurement may take, the work of one alone; then the next is not made larger.
constexpr double kEnoughSeconds = 0.15;
constexpr std::size_t kFewVoxels = 600, kMostVoxels = 60000;
constexpr std::size_t kMoreVoxels = 3;  // times as many in the second miniature

// What this process has computed: others may use the processors as well.
double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <typename Work>
double secondsOf(const Work& work) {
  const double begin = processorSeconds();
  work();
  return processorSeconds() - begin;
}

class Trial {
 public:
  Trial(const study::StudyPlan& plan, double share, std::size_t references, const fs::path& folder)
      : plan_(plan), share_(share), references_(references), folder_(folder) {}

  [[nodiscard]] Times run(std::size_t voxels) const {
    fs::remove_all(folder_);
    fs::create_directories(folder_ / "work");
    const study::Request request = miniatureOf(plan_, voxels, share_, references_, folder_);
    study::StudyPlan small = study::planStudy(request, 1, plan_.version);
    if (small.order != plan_.order) study::settleOrder(small, plan_.order);
    Times times{gridVoxels(small)};
    times.import = secondsOf([&] { import(small); });
    times.one = secondsOf([&] { compute(small, 1); });
    times.several = references_ > 1 ? secondsOf([&] { compute(small, references_); }) : times.one;
    return times;
  }

 private:
  static void import(const study::StudyPlan& small) {
    for (const study::RunPlan& run : small.runs)
      study::prepareRun(run, small.workFolder, small.request.settings.inclusionThreshold, [](double) {});
  }
  static void compute(const study::StudyPlan& small, std::size_t references) {
    std::vector<std::size_t> regions;
    for (std::size_t i = 0; i < references; ++i) regions.push_back(i);
    study::computeReferences(small, regions, [](double) {});
  }

  const study::StudyPlan& plan_;
  double share_;
  std::size_t references_;
  fs::path folder_;
};

double storedVolumes(const study::StudyPlan& plan) {
  double volumes = 0;
  for (const study::RunPlan& run : plan.runs) volumes += run.volumes.volumes;
  return volumes;
}

}  // namespace

std::size_t gridVoxels(const study::StudyPlan& plan) {
  return plan.runs.at(0).grid.size.voxels();
}

double usedShare(const study::StudyPlan& plan) {
  const auto all = static_cast<double>(gridVoxels(plan));
  const auto inside = std::count(plan.space.mask.begin(), plan.space.mask.end(), true);
  if (inside > 0) return static_cast<double>(inside) / all;
  const study::ValueSize size = study::sizeOfValues(plan.runs[0], plan.request.settings.inclusionThreshold);
  return std::max(1.0, static_cast<double>(size.voxels)) / all;
}

double conditionVolumes(const study::StudyPlan& plan) {
  double volumes = 0;
  for (const study::PlannedCondition& condition : plan.conditions) volumes += condition.totalVolumes;
  return volumes;
}

Rates measureRates(const study::StudyPlan& plan, const fs::path& folder) {
  fs::create_directories(folder);
  const auto claimed = formats::ClaimedFolder::anew(folder, "plan");
  const std::size_t references = std::min<std::size_t>(plan.regions.size(), 3);
  const double share = std::clamp(usedShare(plan), 0.1, 1.0);
  const Trial trial(plan, share, references, claimed.path() / "mini");
  Times small = trial.run(kFewVoxels);
  while (small.several < kEnoughSeconds && small.voxels * kMoreVoxels * 2 <= kMostVoxels)
    small = trial.run(small.voxels * 2);
  const Times large = trial.run(small.voxels * kMoreVoxels);
  return ratesFrom(small, large, references, {storedVolumes(plan), conditionVolumes(plan)});
}

}  // namespace planning
