#include "study/study_run.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <random>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "study/engine_host.h"
#include "study/engine_request.h"
#include "study/order_evidence.h"
#include "study/output_folder.h"
#include "study/output_names.h"
#include "study/prepare.h"
#include "study/problem.h"
#include "study/reference_job.h"
#include "study/result_json.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// A seed that is drawn once is kept beside the imported runs, so that repeating an interrupted
// command goes on with it.
std::uint32_t drawnSeed(const Request& request) {
  const fs::path work =
      request.output.workFolder.empty() ? request.output.folder / "work" : request.output.workFolder;
  const fs::path file = work / (request.output.prefix + ".seed");
  std::ifstream kept(file);
  std::uint32_t seed = 0;
  if (kept >> seed) return seed;
  seed = std::random_device{}() & 0x7fffffffU;
  fs::create_directories(work);
  formats::writeTextFile(file.string(), std::to_string(seed) + "\n");
  return seed;
}

// One request on its way: its runs are imported, its order settled, its references computed.
class RequestRun {
 public:
  RequestRun(StudyPlan plan, const StudyOptions& options, WorkerPool& pool, StudyOutcome& outcome)
      : plan_(std::move(plan)), options_(options), pool_(pool), outcome_(outcome) {}

  void start();

 private:
  bool choosesOrder() const {
    return plan_.request.settings.orderChoice != OrderChoice::kFixed || options_.ordersOnly;
  }
  double workOfReferences() const;
  void addImport(std::size_t run);
  void afterImports();
  void addOrder();
  void takeOrder(const WorkOutcome& work);
  void addReferences();
  static std::vector<std::vector<std::size_t>> sharedOut(const std::vector<std::size_t>& regions, int jobs);
  void addReferenceJob(const std::vector<std::size_t>& regions);
  void fail(const WorkOutcome& work, const std::string& what);
  bool keep(std::size_t region);
  void settleResults(const std::vector<std::size_t>& regions, const WorkOutcome& work);

  StudyPlan plan_;
  const StudyOptions& options_;
  WorkerPool& pool_;
  StudyOutcome& outcome_;
  std::size_t importsLeft_ = 0;
  bool failed_ = false;
};

// In units of one import, which is about as long as one reference of a run with few draws.
double RequestRun::workOfReferences() const {
  const double perReference = static_cast<double>(plan_.runs.size()) *
                              (1 + 0.2 * static_cast<double>(plan_.request.settings.nullDraws)) *
                              static_cast<double>(plan_.request.conditions.size());
  return options_.ordersOnly ? 0 : perReference * static_cast<double>(plan_.regions.size());
}

void RequestRun::start() {
  fs::create_directories(plan_.workFolder);
  fs::create_directories(plan_.request.output.folder);
  removeOldStaging(plan_.request.output.folder, plan_.request.output.prefix);
  pool_.expect(workOfReferences());
  for (std::size_t i = 0; i < plan_.runs.size(); ++i) {
    if (!isPrepared(plan_.runs[i], plan_.workFolder)) addImport(i);
  }
  if (importsLeft_ == 0) afterImports();
}

void RequestRun::addImport(std::size_t run) {
  ++importsLeft_;
  const std::string name = plan_.request.title + ": import of " + plan_.runs[run].request.name;
  const auto work = [this, run](WorkerChannel& channel) {
    prepareRun(plan_.runs[run], plan_.workFolder, plan_.request.settings.inclusionThreshold,
               [&](double share) { channel.progress(share); });
  };
  pool_.add({name, 1, work, [this, name](const WorkOutcome& done) {
               if (!done.done) fail(done, name);
               if (--importsLeft_ == 0 && !failed_) afterImports();
             }});
}

void RequestRun::fail(const WorkOutcome& work, const std::string& what) {
  failed_ = true;
  outcome_.failures.push_back(what + ": " + work.message);
  outcome_.inputProblem = outcome_.inputProblem || work.inputProblem;
  if (options_.stopOnFirstCrash) pool_.cancelWaiting();
}

void RequestRun::afterImports() {
  if (choosesOrder()) return addOrder();
  addReferences();
}

void RequestRun::addOrder() {
  const std::string name = plan_.request.title + ": model order";
  const auto work = [this](WorkerChannel& channel) {
    fs::current_path(plan_.workFolder);
    const EngineHost host(plan_.runs[0].request.bold, plan_.runs[0].vtcName, nullptr);
    std::vector<const Region*> regions;
    for (const Region& region : plan_.regions) regions.push_back(&region);
    const Settings& settings = plan_.request.settings;
    const tav::TAV_Pars pars =
        engineRequest(settings, settings.maxOrder, plan_.runs, plan_.conditions, regions, "");
    channel.result(orderJson(gatherOrderEvidence(pars, settings.maxOrder, settings.orderSample)).dump());
  };
  pool_.add({name, 1, work, [this, name](const WorkOutcome& done) {
               if (!done.done) return fail(done, name);
               takeOrder(done);
             }});
}

void RequestRun::takeOrder(const WorkOutcome& work) {
  Json json = Json::parse(work.result);
  const OrderEvidence evidence = orderFromJson(json);
  const fs::path file =
      plan_.request.output.folder / (plan_.request.output.prefix + "_desc-order_timeseries.tsv");
  formats::writeTextFile(file.string(), orderTable(evidence));
  json["Request"] = plan_.request.title;
  outcome_.orders.push_back(json);
  if (options_.ordersOnly) return;
  try {
    settleOrder(plan_, evidence.best(plan_.request.settings.orderChoice));
  } catch (const InputError& error) {
    return fail({false, true, error.what(), ""}, plan_.request.title);
  }
  addReferences();
}

bool RequestRun::keep(std::size_t region) {
  const std::string record = options_.force ? "" : finishedRecord(plan_, region);
  if (record.empty()) return false;
  outcome_.references.push_back(
      {plan_.request.title, plan_.regions[region].name, true, true, "", Json::parse(record)});
  return true;
}

void RequestRun::addReferences() {
  // In a data set of many participants a warning says whose it is.
  const std::string begin = options_.datasetFolder.empty() ? "" : plan_.request.title + ": ";
  for (const std::string& caution : plan_.cautions) outcome_.cautions.push_back(begin + caution);
  std::vector<std::size_t> all;
  for (std::size_t i = 0; i < plan_.regions.size(); ++i) all.push_back(i);
  if (plan_.request.settings.method == Method::kCalibrated) {
    std::erase_if(all, [&](std::size_t i) { return keep(i); });
    for (const auto& together : sharedOut(all, options_.jobs)) addReferenceJob(together);
    return;
  }
  // The plug-in's numbers of a reference depend on those before it: all or none.
  const bool finished = !options_.force && std::all_of(all.begin(), all.end(), [&](std::size_t i) {
    return !finishedRecord(plan_, i).empty();
  });
  if (!finished) return addReferenceJob(all);
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

void RequestRun::addReferenceJob(const std::vector<std::size_t>& regions) {
  std::string name = plan_.request.title + ": " + plan_.regions[regions[0]].name;
  if (regions.size() > 1) name += " and " + std::to_string(regions.size() - 1) + " more";
  const auto work = [this, regions](WorkerChannel& channel) {
    computeReferences(plan_, regions, [&](double share) { channel.progress(share); });
  };
  const double weight =
      workOfReferences() * static_cast<double>(regions.size()) / static_cast<double>(plan_.regions.size());
  pool_.add({name, weight, work, [this, regions](const WorkOutcome& done) { settleResults(regions, done); }});
}

// A worker with several references may have finished some before it failed. The others of a method
// that lets them go on alone get a worker each, so that one bad reference takes no other with it.
void RequestRun::settleResults(const std::vector<std::size_t>& regions, const WorkOutcome& work) {
  const bool alone = regions.size() == 1 || plan_.request.settings.method == Method::kPlugin;
  const bool retry = !work.done && !alone && !options_.stopOnFirstCrash;
  for (const std::size_t i : regions) {
    ReferenceOutcome reference{plan_.request.title, plan_.regions[i].name, false, false, work.message, {}};
    const std::string record = finishedRecord(plan_, i);
    if (!record.empty() && (work.done || regions.size() > 1)) {
      reference = {plan_.request.title, plan_.regions[i].name, true, false, "", Json::parse(record)};
    } else if (retry) {
      addReferenceJob({i});
      continue;
    } else if (work.done) {
      reference.message = "its files are missing";
    }
    outcome_.references.push_back(std::move(reference));
  }
  outcome_.inputProblem = outcome_.inputProblem || (work.inputProblem && !retry);
  if (!work.done && options_.stopOnFirstCrash) pool_.cancelWaiting();
}

void writeDescription(const Request& request, const StudyOptions& options) {
  const fs::path folder =
      options.datasetFolder.empty() ? request.output.folder : fs::path(options.datasetFolder);
  fs::create_directories(folder);
  writeUnlessForeign(folder / "dataset_description.json",
                     datasetDescription(request, options.version).dump(2) + "\n");
  explainOutputFolder(folder);
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

std::vector<StudyPlan> planAll(const std::vector<Request>& requests, const StudyOptions& options,
                               StudyOutcome& outcome) {
  std::vector<StudyPlan> plans;
  const auto plan = [&](const Request& request) {
    const auto given = options.seed ? options.seed : request.seed;
    StudyPlan made = planStudy(request, given.value_or(0), options.version);
    if (!given) made.seed = drawnSeed(made.request);
    plans.push_back(std::move(made));
  };
  for (const Request& request : requests) {
    if (requests.size() == 1) {
      plan(request);
      continue;
    }
    try {
      plan(request);
    } catch (const std::exception& error) {
      outcome.failures.push_back(request.title + ": " + error.what());
      outcome.inputProblem = true;
      if (options.stopOnFirstCrash) break;
    }
  }
  return plans;
}

}  // namespace

bool StudyOutcome::failed() const {
  return !failures.empty() || std::any_of(references.begin(), references.end(),
                                          [](const ReferenceOutcome& reference) { return !reference.done; });
}

StudyOutcome runStudy(const std::vector<Request>& requests, const StudyOptions& options,
                      ProgressBar& progress) {
  StudyOutcome outcome;
  const std::vector<StudyPlan> plans = planAll(requests, options, outcome);
  const InterruptGuard guard;
  WorkerPool pool(options.jobs, &progress);
  std::vector<std::unique_ptr<RequestRun>> runs;
  for (const StudyPlan& plan : plans) {
    runs.push_back(std::make_unique<RequestRun>(plan, options, pool, outcome));
    runs.back()->start();
    if (!options.ordersOnly) writeDescription(plan.request, options);
  }
  pool.run();
  sortOutcome(plans, outcome);
  return outcome;
}

}  // namespace study
