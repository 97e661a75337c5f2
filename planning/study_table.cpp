#include "planning/study_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace planning {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kLater =
    "Warnings that need the data (too little data for the model, steady signals, noise, motion) come with "
    "the results.";

std::size_t computable(const StudyTable& table) {
  return static_cast<std::size_t>(std::count_if(table.requests.begin(), table.requests.end(),
                                                [](const Surveyed& one) { return one.plan.has_value(); }));
}

std::size_t withWork(const StudyTable& table) {
  return static_cast<std::size_t>(
      std::count_if(table.requests.begin(), table.requests.end(),
                    [](const Surveyed& one) { return one.plan && !one.missing.empty(); }));
}

Expenses sumOf(const std::vector<Expenses>& all) {
  Expenses sum;
  for (const Expenses& one : all) {
    sum.workMegabytes += one.workMegabytes;
    sum.outMegabytes += one.outMegabytes;
    sum.importSeconds += one.importSeconds;
    sum.referenceSeconds += one.referenceSeconds;
    sum.reportSeconds += one.reportSeconds;
  }
  return sum;
}

std::string timeText(double seconds) {
  if (seconds < 90) return fmt::format("{:.0f} s", std::max(1.0, seconds));
  if (seconds < 5400) return fmt::format("{:.0f} min", seconds / 60);
  return fmt::format("{:.1f} h", seconds / 3600);
}

std::string sizeText(double megabytes) {
  return megabytes < 10000 ? fmt::format("{:.0f} MB", std::max(1.0, megabytes))
                           : fmt::format("{:.1f} GB", megabytes / 1000);
}

std::size_t widthOf(const StudyTable& table) {
  std::size_t width = 7;
  for (const Surveyed& one : table.requests) width = std::max(width, one.request.title.size());
  return width;
}

// A line for each condition; what belongs to the request stands in its first.
void printRows(const Surveyed& one, std::size_t width, std::ostream& out) {
  const study::StudyPlan& plan = *one.plan;
  const VolumeCounts volumes = volumesOf(plan);
  std::string begin = fmt::format("{:<{}}  {:>4}  {:>7}  {:>7}  {:>8}  {:>6}/{:<6}", one.request.title, width,
                                  plan.runs.size(), volumes.stored, volumes.dropped, volumes.censored,
                                  one.missing.size(), plan.regions.size());
  for (const study::PlannedCondition& condition : plan.conditions) {
    out << fmt::format("{}  {:>5}  {:>9}  {}\n", begin, condition.totalVolumes, condition.effectiveVolumes,
                       condition.name);
    begin.assign(begin.size(), ' ');
  }
}

void printRequests(const StudyTable& table, std::ostream& out) {
  if (computable(table) == 0) return;
  const std::size_t width = widthOf(table);
  out << fmt::format("{:<{}}  {:>4}  {:>7}  {:>7}  {:>8}  {:>6}/{:<6}  {:>5}  {:>9}  {}\n", "request", width,
                     "runs", "volumes", "dropped", "censored", "to do", "refs", "left", "effective",
                     "condition");
  for (const Surveyed& one : table.requests)
    if (one.plan) printRows(one, width, out);
}

void printExcluded(const StudyTable& table, std::ostream& out) {
  for (const std::string& failure : table.withoutRequest) out << "EXCLUDED: " << failure << "\n";
  for (const Surveyed& one : table.requests)
    if (!one.plan) out << "EXCLUDED: " << one.problem << "\n";
}

void printExpenses(const StudyTable& table, std::ostream& out) {
  if (withWork(table) == 0) {
    out << "Nothing is missing: repeating the command keeps what is there\n";
    return;
  }
  const Expenses largest = largestOf(table.expenses), sum = sumOf(table.expenses);
  const TaskNeeds needs = needsOfTask(largest, table.jobs, 1);
  out << fmt::format(
      "On this machine, {} worker{}: about {} (measured here for {:.1f} s), {} of memory each, {} of disk "
      "space for "
      "imported runs, {} for results\n",
      table.jobs, table.jobs == 1 ? "" : "s", timeText(elapsedSeconds(table.expenses, table.jobs)),
      table.measuredSeconds, sizeText(largest.workerMegabytes), sizeText(sum.workMegabytes),
      sizeText(sum.outMegabytes));
  out << fmt::format("As a job array: {} task{} of up to {}; with a margin each asks for {} min and {} MB\n",
                     withWork(table), withWork(table) == 1 ? "" : "s",
                     timeText((largest.importSeconds + largest.referenceSeconds) / table.jobs), needs.minutes,
                     needs.megabytes);
}

Json conditionJson(const study::PlannedCondition& condition) {
  return {{"Condition", condition.name},
          {"Volumes", condition.totalVolumes},
          {"EffectiveVolumes", condition.effectiveVolumes}};
}

Json expensesJson(const Expenses& expenses) {
  return {{"ImportSeconds", expenses.importSeconds}, {"ReferenceSeconds", expenses.referenceSeconds},
          {"ReportSeconds", expenses.reportSeconds}, {"WorkerMegabytes", expenses.workerMegabytes},
          {"WorkMegabytes", expenses.workMegabytes}, {"OutMegabytes", expenses.outMegabytes}};
}

Json requestJson(const Surveyed& one, const Expenses& expenses) {
  if (!one.plan) return {{"Request", one.request.title}, {"Excluded", one.problem}};
  const VolumeCounts volumes = volumesOf(*one.plan);
  Json json = {{"Request", one.request.title},
               {"Runs", one.plan->runs.size()},
               {"Volumes", volumes.stored},
               {"DroppedVolumes", volumes.dropped},
               {"CensoredVolumes", volumes.censored},
               {"References", one.plan->regions.size()},
               {"MissingReferences", one.missing.size()}};
  json["Conditions"] = Json::array();
  for (const study::PlannedCondition& condition : one.plan->conditions)
    json["Conditions"].push_back(conditionJson(condition));
  json["Expected"] = expensesJson(expenses);
  return json;
}

}  // namespace

VolumeCounts volumesOf(const study::StudyPlan& plan) {
  VolumeCounts counts;
  for (const study::RunPlan& run : plan.runs) {
    counts.stored += run.volumes.volumes;
    counts.dropped += run.volumes.dropped;
    counts.censored += run.censored;
  }
  return counts;
}

void printTable(const StudyTable& table, std::ostream& out) {
  const std::size_t all = table.requests.size() + table.withoutRequest.size();
  out << fmt::format("{} of {} can be computed, {} of them {} finished\n", computable(table), all,
                     computable(table) - withWork(table),
                     computable(table) - withWork(table) == 1 ? "is" : "are");
  printRequests(table, out);
  printExcluded(table, out);
  printExpenses(table, out);
  for (const std::string& warning : table.warnings) out << "WARNING: " << warning << "\n";
  out << kLater << "\n";
}

Json tableJson(const StudyTable& table, const std::string& version) {
  Json json = {
      {"SoftwareVersion", version}, {"Requests", Json::array()}, {"WithoutRequest", table.withoutRequest}};
  for (std::size_t i = 0; i < table.requests.size(); ++i)
    json["Requests"].push_back(requestJson(table.requests[i], table.expenses[i]));
  const TaskNeeds needs = needsOfTask(largestOf(table.expenses), table.jobs, 1);
  const Expenses sum = sumOf(table.expenses);
  json["ThisMachine"] = {{"Jobs", table.jobs},
                         {"Seconds", elapsedSeconds(table.expenses, table.jobs)},
                         {"WorkerMegabytes", largestOf(table.expenses).workerMegabytes},
                         {"WorkMegabytes", sum.workMegabytes},
                         {"OutMegabytes", sum.outMegabytes}};
  json["JobArray"] = {{"Tasks", withWork(table)}, {"Minutes", needs.minutes}, {"Megabytes", needs.megabytes}};
  json["Warnings"] = table.warnings;
  return json;
}

}  // namespace planning
