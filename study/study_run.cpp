#include "study/study_run.h"

#include <fmt/core.h>

#include <algorithm>

#include "request/problem.h"
#include "study/dataset_files.h"
#include "study/earlier_results.h"
#include "study/interrupt.h"
#include "study/kept_request.h"
#include "study/request_run.h"
#include "study/study_folders.h"
#include "study/study_seed.h"
#include "study/worker_pool.h"

namespace study {
namespace {

namespace fs = std::filesystem;

void writeDescription(const Request& request, const StudyOptions& options, StudyFolders& folders) {
  const fs::path folder =
      options.datasetFolder.empty() ? request.output.folder : fs::path(options.datasetFolder);
  folders.enter(folder);
  writeDatasetFiles(request, options.version, folder);
}

// Outcomes arrive in the order in which workers finish; reports must not depend on it.
void sortOutcome(const std::vector<StudyPlan>& plans, StudyOutcome& outcome) {
  const auto place = [&](const ReferenceOutcome& reference) {
    std::size_t count = 0;
    for (const StudyPlan& plan : plans) {
      for (const Region& region : plan.regions) {
        if (plan.request.title == reference.request && region.name == reference.reference) return count;
        ++count;
      }
    }
    return count;
  };
  std::stable_sort(outcome.references.begin(), outcome.references.end(),
                   [&](const ReferenceOutcome& a, const ReferenceOutcome& b) { return place(a) < place(b); });
}

// What is said of the data, each text once. In a data set of many participants a warning says whose it is.
void collectWarnings(const StudyOptions& options, StudyOutcome& outcome) {
  for (const ReferenceOutcome& reference : outcome.references) {
    const std::string begin = options.datasetFolder.empty() ? "" : reference.request + ": ";
    for (const std::string& warning : reference.record.warnings) {
      const bool isKnown = std::find(outcome.cautions.begin(), outcome.cautions.end(), begin + warning) !=
                           outcome.cautions.end();
      if (!isKnown) outcome.cautions.push_back(begin + warning);
    }
  }
}

void failInput(const std::string& failure, StudyOutcome& outcome, ProgressBar& progress) {
  progress.fail(failure);
  outcome.failures.push_back(failure);
  outcome.inputProblem = true;
}

std::vector<StudyPlan> planAll(const std::vector<Request>& requests, const StudyOptions& options,
                               StudyOutcome& outcome, ProgressBar& progress) {
  for (const std::string& failure : options.withoutRequest) failInput(failure, outcome, progress);
  std::vector<StudyPlan> plans;
  const auto plan = [&](const Request& request) {
    const auto given = options.seed ? options.seed : request.seed;
    StudyPlan made = planStudy(request, given.value_or(0), options.version);
    if (!given) made.seed = drawnSeed(made.request);
    plans.push_back(std::move(made));
  };
  const bool isAlone = requests.size() == 1 && options.withoutRequest.empty();
  for (const Request& request : requests) {
    if (options.stopOnFirstCrash && outcome.failed()) break;
    try {
      plan(request);
    } catch (const std::exception& error) {
      if (isAlone) throw;
      const std::string text = error.what(), begin = request.title + ": ";
      failInput(text.starts_with(begin) ? text : begin + text, outcome, progress);
    }
  }
  return plans;
}

// Nobody else works under these names, and what is there already may stay or go.
void takeOver(const std::vector<StudyPlan>& plans, const StudyOptions& options, StudyFolders& folders,
              StudyOutcome& outcome) {
  if (!options.computesMaps()) return;
  for (const StudyPlan& plan : plans) folders.claim(plan.request.output.folder, plan.request.output.prefix);
  if (options.force) return;
  refuseOtherRequests(plans);
  for (const StudyPlan& plan : plans) {
    const std::string foreign = foreignResultsCaution(plan);
    if (!foreign.empty()) outcome.cautions.push_back(fmt::format("{}: {}", plan.request.title, foreign));
  }
}

// Not before the new results are there.
void removeForeign(const std::vector<StudyPlan>& plans, const StudyOptions& options, StudyOutcome& outcome) {
  if (!options.force || !options.computesMaps() || outcome.failed()) return;
  for (const StudyPlan& plan : plans) {
    const std::string removed = removeForeignResults(plan);
    if (!removed.empty()) outcome.cautions.push_back(fmt::format("{}: {}", plan.request.title, removed));
  }
}

void keepForReports(const std::vector<Request>& requests, const std::vector<StudyPlan>& plans,
                    const StudyOptions& options, const StudyOutcome& outcome) {
  if (!options.computesMaps()) return;
  for (const StudyPlan& plan : plans) {
    keepRequest(plan);
    keepFailures(plan, outcome);
  }
  if (options.datasetFolder.empty()) return;
  std::vector<std::string> titles;
  for (const Request& request : requests) titles.push_back(request.title);
  keepRequestFailures(options.datasetFolder, titles, outcome);
}

}  // namespace

bool StudyOutcome::failed() const {
  return !failures.empty() || std::any_of(references.begin(), references.end(),
                                          [](const ReferenceOutcome& reference) { return !reference.done; });
}

StudyOutcome runStudy(const std::vector<Request>& requests, const StudyOptions& options,
                      ProgressBar& progress) {
  StudyOutcome outcome;
  const std::vector<StudyPlan> plans = planAll(requests, options, outcome, progress);
  const InterruptGuard guard;
  StudyFolders folders;
  takeOver(plans, options, folders, outcome);
  WorkerPool pool(options.jobs, &progress);  // ends its workers before the folders are swept
  std::vector<std::unique_ptr<RequestRun>> runs;
  for (const StudyPlan& plan : plans) {
    runs.push_back(
        std::make_unique<RequestRun>(plan, options, pool, folders, outcome, progress, plans.size()));
    runs.back()->start();
    if (!options.ordersOnly) writeDescription(plan.request, options, folders);
  }
  pool.run();
  removeForeign(plans, options, outcome);
  sortOutcome(plans, outcome);
  keepForReports(requests, plans, options, outcome);
  collectWarnings(options, outcome);
  return outcome;
}

}  // namespace study
