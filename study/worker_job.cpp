#include "study/worker_job.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

#include "formats/atomic_file.h"
#include "prepare/prepare.h"
#include "prepare/value_size.h"
#include "request/problem.h"
#include "request/request_file.h"
#include "request/request_text.h"
#include "study/engine_request.h"
#include "study/order_evidence.h"
#include "study/reference_job.h"
#include "study/usable_region.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr int kMostThreads = 256;
constexpr std::array<const char*, 3> kWorkNames = {"import", "order", "references"};

std::vector<std::size_t> allRegions(const StudyPlan& plan) {
  std::vector<std::size_t> all;
  for (std::size_t i = 0; i < plan.regions.size(); ++i) all.push_back(i);
  return all;
}

// With method "plugin" the last key covers all references before it.
std::vector<std::string> keysOf(const StudyPlan& plan, const std::vector<std::size_t>& regions) {
  if (plan.request.settings.method == Method::kPlugin) return {resultKey(plan, regions.back())};
  std::vector<std::string> keys;
  for (const std::size_t region : regions) keys.push_back(resultKey(plan, region));
  return keys;
}

WorkerJob jobOf(const StudyPlan& plan, Work work, std::vector<std::size_t> items) {
  WorkerJob job{work, plan.version, std::move(items), plan.order, 1, 1, {}, withoutLines(plan.request)};
  job.request.seed = plan.seed;
  return job;
}

Work workNamed(const std::string& name) {
  for (std::size_t i = 0; i < kWorkNames.size(); ++i) {
    if (name == kWorkNames[i]) return static_cast<Work>(i);
  }
  throw InputError(fmt::format("there is no work '{}'", name));
}

[[noreturn]] void failChanged(const Request& request) {
  throw RunError(
      fmt::format("inputs of {} changed while it was being computed; repeat the command", request.title));
}

void importRun(const WorkerJob& job, const std::function<void(double)>& progress) {
  const Request& request = job.request;
  if (job.items.at(0) >= request.runs.size()) failChanged(request);
  RunPlan run = planRun(request.runs[job.items[0]], request.settings.inclusionThreshold, job.version,
                        request.settings.highPass);
  setScale(run, job.scale);
  if (job.expected != std::vector<std::string>{run.vtcName}) failChanged(request);
  prepareRun(run, request.output.workFolder, request.settings.inclusionThreshold, progress);
}

StudyPlan planAgain(const WorkerJob& job) {
  StudyPlan plan = planStudy(job.request, job.request.seed.value_or(0), job.version);
  if (plan.order != job.order) settleOrder(plan, job.order);
  for (const std::size_t item : job.items) {
    if (item >= plan.regions.size()) failChanged(job.request);
  }
  if (job.items.empty() || keysOf(plan, job.items) != job.expected) failChanged(job.request);
  return plan;
}

std::string orderEvidence(const StudyPlan& plan) {
  const std::vector<UsableRegion> usable = usableRegions(plan, allRegions(plan));
  std::vector<const Region*> regions;
  for (const UsableRegion& one : usable) regions.push_back(&one.region);
  const Settings& settings = plan.request.settings;
  const tav::TAV_Pars pars =
      engineRequest(settings, settings.maxOrder, plan.runs, plan.conditions, regions, "");
  return orderJson(gatherOrderEvidence(pars, plan.workFolder, settings.maxOrder, settings.orderSample))
      .dump();
}

// The library would cut off what does not fit.
template <typename Integer>
Integer wholeNumber(const Json& value) {
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (std::in_range<Integer>(number)) return static_cast<Integer>(number);
  }
  throw Json::type_error::create(302, "a whole number from 0 is expected", &value);
}

std::vector<std::size_t> wholeNumbers(const Json& list) {
  if (!list.is_array()) throw Json::type_error::create(302, "a list is expected", &list);
  std::vector<std::size_t> numbers;
  for (const Json& item : list) numbers.push_back(wholeNumber<std::size_t>(item));
  return numbers;
}

double powerOfTwo(const Json& value) {
  int exponent = 0;
  if (value.is_number() && std::frexp(value.get<double>(), &exponent) == 0.5) return value.get<double>();
  throw Json::type_error::create(302, "a power of two is expected", &value);
}

// What the head says; throws Json::exception when an entry is missing or of the wrong type.
WorkerJob parseHead(const std::string& line) {
  const Json head = Json::parse(line);
  WorkerJob job;
  job.version = head.at("Tavmap").get<std::string>();
  job.work = workNamed(head.at("Work").get<std::string>());
  job.items = wholeNumbers(head.at("Items"));
  job.order = wholeNumber<int>(head.at("Order"));
  if (head.contains("Scale")) job.scale = powerOfTwo(head["Scale"]);
  if (head.contains("Threads")) job.threads = std::clamp(wholeNumber<int>(head["Threads"]), 1, kMostThreads);
  job.expected = head.at("Expected").get<std::vector<std::string>>();
  return job;
}

}  // namespace

WorkerJob importJob(const StudyPlan& plan, std::size_t run) {
  WorkerJob job = jobOf(plan, Work::kImport, {run});
  job.scale = plan.runs[run].scale;
  job.expected = {plan.runs[run].vtcName};
  return job;
}

WorkerJob orderJob(const StudyPlan& plan) {
  WorkerJob job = jobOf(plan, Work::kOrder, allRegions(plan));
  job.expected = keysOf(plan, job.items);
  return job;
}

WorkerJob referencesJob(const StudyPlan& plan, const std::vector<std::size_t>& regions, int threads) {
  WorkerJob job = jobOf(plan, Work::kReferences, regions);
  job.threads = threads;
  job.expected = keysOf(plan, regions);
  return job;
}

std::string jobText(const WorkerJob& job) {
  Json head;
  head["Tavmap"] = job.version;
  head["Work"] = kWorkNames[static_cast<std::size_t>(job.work)];
  head["Items"] = job.items;
  head["Order"] = job.order;
  if (job.scale != 1) head["Scale"] = job.scale;
  if (job.threads != 1) head["Threads"] = job.threads;
  head["Expected"] = job.expected;
  return fmt::format("{}\n{}", head.dump(), requestText(job.request));
}

// The request stands behind an empty line in place of the head, so that its lines count as in the file.
WorkerJob parseJob(const std::string& text, const fs::path& file) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  WorkerJob job;
  try {
    job = parseHead(text.substr(0, end));
  } catch (const Json::exception& error) {
    throw InputError(fmt::format("{} is no job of tavmap: {}", file.string(), error.what()));
  }
  job.request = withoutLines(parseRequest(text.substr(end), file.string(), file.parent_path()));
  return job;
}

WorkerJob readJob(const fs::path& file) {
  return parseJob(formats::readTextFile(file.string()), file);
}

std::string carryOut(const WorkerJob& job, const std::string& version,
                     const std::function<void(double)>& progress) {
  if (job.version != version) {
    throw InputError(fmt::format(
        "the job was written by tavmap {}, and this is tavmap {}; repeat the command that wrote it",
        job.version, version));
  }
  if (job.work == Work::kImport) {
    importRun(job, progress);
    return "";
  }
  const StudyPlan plan = planAgain(job);
  if (job.work == Work::kOrder) return orderEvidence(plan);
  computeReferences(plan, job.items, progress, job.threads);
  return "";
}

}  // namespace study
