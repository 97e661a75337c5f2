#include "planning/expenses.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "prepare/prepare.h"

namespace planning {
namespace {

constexpr double kMegabyte = 1e6;

double volumesOf(const study::StudyPlan& plan) {
  double volumes = 0;
  for (const study::PlannedCondition& condition : plan.conditions) volumes += condition.totalVolumes;
  return volumes;
}

}  // namespace

Expenses expensesOf(const Surveyed& one, const Rates& rates) {
  const study::StudyPlan& plan = *one.plan;
  const auto voxels = static_cast<double>(gridVoxels(plan));
  Expenses expenses;
  for (const study::RunPlan& run : plan.runs) {
    if (study::isPrepared(run, plan.workFolder)) continue;
    expenses.importSeconds += rates.importPerValue * voxels * run.volumes.volumes;
    expenses.workMegabytes += 4 * voxels * run.volumes.volumes / kMegabyte;
  }
  const double longer = rates.volumes > 0 ? volumesOf(plan) / rates.volumes : 1;
  const auto references = static_cast<double>(one.missing.size());
  const double passes = std::ceil(references / static_cast<double>(kTogether));
  expenses.referenceSeconds =
      longer * (passes * (rates.passFixed + rates.passPerVoxel * voxels) +
                references * (rates.referenceFixed + rates.referencePerVoxel * voxels));
  expenses.workerMegabytes = 300;
  return expenses;
}

std::vector<Expenses> expensesOf(const std::vector<Surveyed>& requests, const std::filesystem::path& folder) {
  const study::StudyPlan* longest = nullptr;
  for (const Surveyed& one : requests) {
    if (!one.plan || one.missing.empty()) continue;
    if (longest == nullptr || volumesOf(*one.plan) > volumesOf(*longest)) longest = &*one.plan;
  }
  std::vector<Expenses> all(requests.size());
  if (longest == nullptr) return all;
  const Rates rates = measureRates(*longest, folder);
  for (std::size_t i = 0; i < requests.size(); ++i)
    if (requests[i].plan && !requests[i].missing.empty()) all[i] = expensesOf(requests[i], rates);
  return all;
}

Expenses largestOf(const std::vector<Expenses>& all) {
  Expenses largest;
  for (const Expenses& one : all) {
    for (double Expenses::*figure :
         {&Expenses::importSeconds, &Expenses::referenceSeconds, &Expenses::reportSeconds,
          &Expenses::workerMegabytes, &Expenses::workMegabytes, &Expenses::outMegabytes})
      largest.*figure = std::max(largest.*figure, one.*figure);
  }
  return largest;
}

double elapsedSeconds(const std::vector<Expenses>& all, int jobs) {
  double shared = 0, alone = 0;
  for (const Expenses& one : all) {
    shared += one.importSeconds + one.referenceSeconds;
    alone += one.reportSeconds;
  }
  return shared / jobs + alone;
}

TaskNeeds needsOfTask(const Expenses& largest, int jobs, std::size_t together) {
  const double seconds = (largest.importSeconds + largest.referenceSeconds) * static_cast<double>(together);
  const double megabytes = largest.workerMegabytes * jobs * 1.5;
  return {2 + static_cast<int>(std::ceil(3 * seconds / 60)),
          static_cast<int>(std::ceil(megabytes / 100)) * 100};
}

TaskNeeds needsOfGroup(std::size_t requests) {
  return {10 + static_cast<int>(requests / 10), 2000};
}

TaskNeeds needsOfReports(const Expenses& largest, std::size_t requests) {
  const double seconds = largest.reportSeconds * static_cast<double>(requests);
  return {5 + static_cast<int>(std::ceil(3 * seconds / 60)), 2000};
}

}  // namespace planning
