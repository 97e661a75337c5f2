#include "planning/expenses.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "planning/sizes.h"
#include "prepare/prepare.h"

namespace planning {
namespace {

constexpr double kPageSeconds = 0.03, kPageSecondsPerVoxel = 2e-6;  // of a reference and condition, measured
constexpr double kUnderlayBytes = 15;                               // a voxel, once a request

constexpr double kParentMegabytes = 50;  // of the process that starts workers

// Half as much again, in hundreds.
int rounded(double megabytes) {
  return static_cast<int>(std::ceil(1.5 * megabytes / 100)) * 100;
}

}  // namespace

Expenses expensesOf(const Surveyed& one, const Rates& rates) {
  const study::StudyPlan& plan = *one.plan;
  const Sizes sizes = sizesOf(plan);
  Expenses expenses;
  for (const study::RunPlan& run : plan.runs) {
    if (study::isPrepared(run, plan.workFolder)) continue;
    expenses.importSeconds += rates.importPerValue * sizes.gridVoxels * run.volumes.volumes;
    const int kept = run.volumes.volumes - run.volumes.dropped;
    expenses.workMegabytes += 4 * sizes.gridVoxels * kept / kMegabyte;
  }
  const double longer = rates.volumes > 0 ? conditionVolumes(plan) / rates.volumes : 1;
  const auto references = static_cast<double>(one.missing.size());
  const double passes = std::ceil(references / static_cast<double>(kTogether));
  expenses.referenceSeconds =
      longer * (passes * (rates.passFixed + rates.passPerVoxel * sizes.gridVoxels) +
                references * (rates.referenceFixed + rates.referencePerVoxel * sizes.gridVoxels));
  expenses.reportSeconds =
      references * sizes.conditions * (kPageSeconds + kPageSecondsPerVoxel * sizes.usedVoxels);
  expenses.workerMegabytes =
      std::max(importMegabytes(sizes), referenceMegabytes(sizes, std::min<double>(references, kTogether)));
  expenses.reportMegabytes = reportMegabytes(sizes);
  expenses.outMegabytes = references * resultMegabytes(sizes) + kUnderlayBytes * sizes.usedVoxels / kMegabyte;
  return expenses;
}

std::vector<Expenses> expensesOf(const std::vector<Surveyed>& requests, const std::filesystem::path& folder) {
  const study::StudyPlan* longest = nullptr;
  for (const Surveyed& one : requests) {
    if (!one.plan || one.missing.empty()) continue;
    if (longest == nullptr || conditionVolumes(*one.plan) > conditionVolumes(*longest)) longest = &*one.plan;
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
          &Expenses::workerMegabytes, &Expenses::reportMegabytes, &Expenses::workMegabytes,
          &Expenses::outMegabytes})
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
  const int minutes = 2 + static_cast<int>(std::ceil(3 * seconds / 60));
  return {minutes, rounded(largest.workerMegabytes * jobs + kParentMegabytes)};
}

TaskNeeds needsOfGroup(std::size_t requests) {
  return {10 + static_cast<int>(requests / 10), 2000};
}

TaskNeeds needsOfReports(const Expenses& largest, std::size_t requests) {
  const double seconds = largest.reportSeconds * static_cast<double>(requests);
  return {5 + static_cast<int>(std::ceil(3 * seconds / 60)), rounded(largest.reportMegabytes)};
}

}  // namespace planning
