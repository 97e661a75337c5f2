#include "study/request_run.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"
#include "prepare/prepare.h"
#include "request/problem.h"
#include "study/child_process.h"
#include "study/earlier_results.h"
#include "study/order_evidence.h"
#include "study/reference_job.h"
#include "study/underlays.h"

namespace study {

namespace fs = std::filesystem;

namespace {

using Json = nlohmann::ordered_json;

std::vector<std::string> workerCommand(const StudyOptions& options, const fs::path& job) {
  if (options.program.empty()) throw RunError("no program is known that could do the work");
  return {options.program, "worker", job.string(), "--report-to", std::to_string(kReportDescriptor)};
}

}  // namespace

RequestRun::RequestRun(StudyPlan plan, const StudyOptions& options, WorkerPool& pool, StudyFolders& folders,
                       StudyOutcome& outcome, ProgressBar& progress, std::size_t requests)
    : plan_(std::move(plan)),
      requests_(requests),
      options_(options),
      pool_(pool),
      folders_(folders),
      outcome_(outcome),
      progress_(progress) {}

bool RequestRun::choosesOrder() const {
  return plan_.request.settings.orderChoice != OrderChoice::kFixed || options_.ordersOnly;
}

// In units of one import, which is about as long as one reference of a run with few draws.
double RequestRun::workOfReferences() const {
  const Settings& settings = plan_.request.settings;
  const double perReference = static_cast<double>(plan_.runs.size()) *
                              (1 + 0.2 * static_cast<double>(settings.nullDraws + settings.fweDraws)) *
                              static_cast<double>(plan_.request.conditions.size());
  return !options_.computesMaps() ? 0 : perReference * static_cast<double>(plan_.regions.size());
}

void RequestRun::start() {
  folders_.enter(plan_.workFolder);
  folders_.enter(plan_.request.output.folder);
  try {
    if (options_.computesMaps()) writeUnderlays(plan_);
  } catch (const InputError& error) {
    return fail({false, true, error.what(), ""}, plan_.request.title);
  }
  pool_.expect(workOfReferences());
  for (std::size_t i = 0; i < plan_.runs.size(); ++i) {
    if (!isPrepared(plan_.runs[i], plan_.workFolder)) addImport(i);
  }
  if (importsLeft_ == 0) afterImports();
}

// What a worker finds in its job file, it plans again; see worker_job.h.
void RequestRun::addWork(const std::string& name, double weight, const WorkerJob& job,
                         std::function<void(const WorkOutcome&)> finished, bool isTriedInParts) {
  const fs::path file = folders_.writeJob(plan_.workFolder, jobText(job));
  pool_.add({fmt::format("{}: {}", plan_.request.title, name), weight, workerCommand(options_, file),
             std::move(finished), isTriedInParts});
}

void RequestRun::addImport(std::size_t run) {
  ++importsLeft_;
  const std::string name = "import of " + plan_.runs[run].request.name;
  addWork(name, 1, importJob(plan_, run), [this, name](const WorkOutcome& done) {
    if (!done.done) fail(done, fmt::format("{}: {}", plan_.request.title, name));
    if (--importsLeft_ == 0 && !failed_) afterImports();
  });
}

void RequestRun::fail(const WorkOutcome& work, const std::string& what) {
  failed_ = true;
  outcome_.failures.push_back(fmt::format("{}: {}", what, work.message));
  progress_.fail(outcome_.failures.back());
  outcome_.inputProblem = outcome_.inputProblem || work.inputProblem;
  if (options_.stopOnFirstCrash) pool_.cancelWaiting();
}

void RequestRun::afterImports() {
  if (choosesOrder()) return addOrder();
  addReferences();
}

void RequestRun::addOrder() {
  addWork("model order", 1, orderJob(plan_), [this](const WorkOutcome& done) {
    if (!done.done) return fail(done, plan_.request.title + ": model order");
    takeOrder(done);
  });
}

void RequestRun::takeOrder(const WorkOutcome& work) {
  OrderEvidence evidence = orderFromJson(Json::parse(work.result));
  const int best = evidence.best(plan_.request.settings.orderChoice);
  try {
    refuseOtherOrder(best);
    const fs::path file =
        plan_.request.output.folder / (plan_.request.output.prefix + "_desc-order_timeseries.tsv");
    formats::writeTextFile(file.string(), orderTable(evidence));
    outcome_.orders.push_back({plan_.request.title, std::move(evidence)});
    if (options_.ordersOnly) return;
    settleOrder(plan_, best);
  } catch (const InputError& error) {
    return fail({false, true, error.what(), ""}, plan_.request.title);
  }
  addReferences();
}

// Which order the data speak for may have changed although the request has not.
void RequestRun::refuseOtherOrder(int order) const {
  if (!options_.computesMaps() || options_.force) return;
  StudyPlan settled = plan_;
  try {
    settleOrder(settled, order);
  } catch (const InputError&) {
    return;  // it will overwrite nothing
  }
  refuseOtherRequests({settled}, OrderIs::kSettled);
}

bool RequestRun::keep(std::size_t region) {
  const auto record = options_.force ? std::nullopt : finishedRecord(plan_, region);
  if (!record) return false;
  outcome_.references.push_back({plan_.request.title, plan_.regions[region].name, true, true, "", *record});
  return true;
}

void RequestRun::addReferences() {
  if (options_.importsOnly) {
    outcome_.prepared.push_back(plan_);
    return;
  }
  // In a data set of many participants a warning says whose it is.
  const std::string begin = options_.datasetFolder.empty() ? "" : plan_.request.title + ": ";
  const auto say = [&](const std::string& caution) {
    const auto& said = outcome_.cautions;
    if (std::find(said.begin(), said.end(), begin + caution) == said.end())
      outcome_.cautions.push_back(begin + caution);
  };
  for (const std::string& caution : plan_.cautions) say(caution);
  for (const Region& region : plan_.regions) std::for_each(region.notes.begin(), region.notes.end(), say);
  std::vector<std::size_t> all;
  for (std::size_t i = 0; i < plan_.regions.size(); ++i) all.push_back(i);
  if (plan_.request.settings.method == Method::kCalibrated) {
    std::erase_if(all, [&](std::size_t i) { return keep(i); });
    const auto shares = sharedOut(all, options_.jobs);
    for (const auto& together : shares) addReferenceJob(together, threadsOf(shares.size()));
    return;
  }
  // The plug-in's numbers of a reference depend on those before it: all or none.
  const bool finished = !options_.force && std::all_of(all.begin(), all.end(), [&](std::size_t i) {
    return finishedRecord(plan_, i).has_value();
  });
  if (!finished) return addReferenceJob(all, 1);
  for (const std::size_t i : all) keep(i);
}

// References that one worker computes share its passes over the voxels. As many for each worker, and
// not so many that their surrogates fill the memory.
std::vector<std::vector<std::size_t>> RequestRun::sharedOut(const std::vector<std::size_t>& regions,
                                                            int jobs) {
  constexpr std::size_t kMostTogether = 10;
  const std::size_t rounds = (regions.size() + kMostTogether * static_cast<std::size_t>(jobs) - 1) /
                             (kMostTogether * static_cast<std::size_t>(jobs));
  const std::size_t groups = std::min(rounds * static_cast<std::size_t>(jobs), regions.size());
  std::vector<std::vector<std::size_t>> shares(groups);
  for (std::size_t i = 0; i < regions.size(); ++i) shares[i * groups / regions.size()].push_back(regions[i]);
  return shares;
}

// When there is less to do at a time than there are processors for it.
int RequestRun::threadsOf(std::size_t workers) const {
  return std::max(1, options_.jobs / static_cast<int>(std::max<std::size_t>(1, workers * requests_)));
}

void RequestRun::addReferenceJob(const std::vector<std::size_t>& regions, int threads) {
  std::string name = plan_.regions[regions[0]].name;
  if (regions.size() > 1) name += fmt::format(" and {} more", regions.size() - 1);
  const double weight =
      workOfReferences() * static_cast<double>(regions.size()) / static_cast<double>(plan_.regions.size());
  addWork(
      name, weight, referencesJob(plan_, regions, threads),
      [this, regions](const WorkOutcome& done) { settleResults(regions, done); }, isTriedInParts(regions));
}

void RequestRun::settle(ReferenceOutcome reference) {
  if (!reference.done)
    progress_.fail(fmt::format("{}: {}: {}", reference.request, reference.reference, reference.message));
  outcome_.references.push_back(std::move(reference));
}

// The others of a worker that failed get one each where the method lets them go on alone.
bool RequestRun::isTriedInParts(const std::vector<std::size_t>& regions) const {
  const bool alone = regions.size() == 1 || plan_.request.settings.method == Method::kPlugin;
  return !alone && !options_.stopOnFirstCrash;
}

// A worker with several references may have finished some before it failed. The others are tried alone, so
// that one bad reference takes no other with it.
void RequestRun::settleResults(const std::vector<std::size_t>& regions, const WorkOutcome& work) {
  const bool retry = !work.done && isTriedInParts(regions);
  for (const std::size_t i : regions) {
    ReferenceOutcome reference{plan_.request.title, plan_.regions[i].name, false, false, work.message, {}};
    const auto record = finishedRecord(plan_, i);
    if (record && (work.done || regions.size() > 1)) {
      reference = {plan_.request.title, plan_.regions[i].name, true, false, "", *record};
    } else if (retry) {
      addReferenceJob({i}, 1);
      continue;
    } else if (work.done) {
      reference.message = "its files are missing";
    }
    settle(std::move(reference));
  }
  outcome_.inputProblem = outcome_.inputProblem || (work.inputProblem && !retry);
  if (!work.done && options_.stopOnFirstCrash) pool_.cancelWaiting();
}

}  // namespace study
