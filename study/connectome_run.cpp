#include "study/connectome_run.h"

#include <fmt/core.h>

#include <algorithm>

#include "connectome/result_files.h"
#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "prepare/cautions.h"
#include "prepare/fingerprint.h"
#include "request/problem.h"
#include "results/output_names.h"
#include "study/connectome_key.h"
#include "study/connectome_series.h"

namespace study {
namespace {

namespace fs = std::filesystem;

void refuseWhatNoConnectomeHas(const Request& request) {
  if (request.settings.method == Method::kPlugin) {
    throw InputError(
        fmt::format("{}: connectomes are computed with method \"calibrated\" alone; write it instead of "
                    "\"plugin\", or remove the setting",
                    request.title));
  }
  for (const ConditionRequest& condition : request.conditions) {
    for (const ConditionPart& part : condition.parts) {
      if (part.source == part.target) continue;
      throw InputError(fmt::format(
          "{}: condition '{}' pairs run '{}' with run '{}'; in a connectome all regions are of one "
          "run, write 'runs' instead of 'pairs'",
          request.title, condition.name, part.source, part.target));
    }
  }
}

void requireNodes(const StudyPlan& plan) {
  if (plan.regions.size() >= 2) return;
  throw InputError(
      fmt::format("{}: a connectome needs two references or more, there is one; write labels = [\"all\"] for "
                  "those of an atlas",
                  plan.request.title));
}

std::optional<connectome::Record> recordThere(const fs::path& file) {
  try {
    if (fs::exists(file)) return connectome::readRecordFile(file.string());
  } catch (const formats::FileError&) {  // what is no whole record vouches for nothing
  }
  return std::nullopt;
}

bool filesAreWhole(const connectome::Record& record, const fs::path& folder) {
  return std::all_of(record.files.begin(), record.files.end(), [&](const auto& file) {
    std::error_code missing;
    const std::uintmax_t size = fs::file_size(folder / file.first, missing);
    return !missing && size == file.second;
  });
}

void refuseOther(const StudyPlan& plan, const connectome::Record& there, const connectome::Record& asked) {
  const std::string differences = inputDifferences(asked.madeFrom, there.madeFrom);
  if (differences.empty()) return;
  throw InputError(
      fmt::format("{}: {} has a connectome of another request named {}. They differ in {}. Nothing was "
                  "changed. Choose another output "
                  "folder or prefix, or give --force to replace it",
                  plan.request.title, plan.request.output.folder.string(),
                  connectome::recordFileOf(plan.request.output.prefix), differences));
}

// All that is known before anything is computed.
connectome::Record plannedRecord(const StudyPlan& plan, const GivenNames& given) {
  const Settings& settings = plan.request.settings;
  connectome::Record record;
  record.madeFrom = connectomeInputs(plan);
  record.key = connectomeKey(record.madeFrom);
  record.title = plan.request.title;
  record.version = plan.version;
  record.order = plan.order;
  record.orderChosenBy = orderChoiceName(settings.orderChoice);
  record.nodes = plan.regions.size();
  record.surrogates = given.allOthers ? 0 : static_cast<std::size_t>(plan.request.connectome.surrogates);
  record.givenSeries = plan.request.connectome.conditionOn;
  record.q = settings.qValues;
  record.fdrConstant = settings.fdrConstant;
  record.seed = plan.seed;
  return record;
}

class ConnectomeMaker {
 public:
  ConnectomeMaker(const StudyPlan& plan, const GivenNames& given, int threads, ProgressBar& progress,
                  connectome::Record& record)
      : plan_(plan),
        given_(given),
        threads_(threads),
        progress_(progress),
        record_(record),
        nodes_(connectomeNodes(plan)),
        staging_(plan.request.output.folder, plan.request.output.prefix, "connectome") {
    record_.undefined = nodes_.undefined;
    record_.warnings = warnings();
  }

  void make() {
    for (std::size_t i = 0; i < plan_.conditions.size(); ++i) makeCondition(i);
    for (const auto& entry : fs::directory_iterator(staging_.folder()))
      record_.files[entry.path().filename().string()] = entry.file_size();
    const std::string file = connectome::recordFileOf(plan_.request.output.prefix);
    formats::writeTextFile(staging_.path(file).string(), connectome::recordText(record_));
    (void)staging_.publish(file);
  }

 private:
  [[nodiscard]] std::vector<std::string> warnings() const {
    std::vector<std::string> all = plan_.cautions;
    all.insert(all.end(), nodes_.notes.begin(), nodes_.notes.end());
    for (const PlannedCondition& condition : plan_.conditions) {
      const std::string few = fewSamplesCaution(condition.name, condition.effectiveVolumes, plan_.order);
      if (!few.empty()) all.push_back(few);
    }
    return all;
  }

  [[nodiscard]] connectome::ConnectomeOptions optionsOf(std::size_t condition) const {
    const std::string begin = plan_.request.output.prefix + "\nconnectome\n";
    const auto all = static_cast<double>(plan_.conditions.size());
    return {plan_.order,
            record_.surrogates,
            given_.allOthers,
            record_.q,
            record_.fdrConstant,
            derivedSeed(plan_.seed, begin + plan_.conditions[condition].name),
            threads_,
            [this, condition, all](double done) {
              progress_.onProgress(static_cast<double>(condition) + done, all);
            }};
  }

  void makeCondition(std::size_t index) {
    const PlannedCondition& planned = plan_.conditions[index];
    const connectome::NodeSeries series = connectomeSeries(plan_, planned, nodes_, given_);
    connectome::ConditionResult result;
    try {
      result = computeCondition(series, optionsOf(index));
    } catch (const std::runtime_error& error) {
      throw InputError(
          fmt::format("{}: condition '{}': {}", plan_.request.title, planned.name, error.what()));
    }
    if (index == 0) settleOrder(result);
    connectome::ConditionRecord condition;
    condition.name = planned.name;
    for (const PlannedSet& set : planned.sets) condition.runs.push_back(set.source);
    condition.volumes = planned.totalVolumes;
    condition.effectiveVolumes = planned.effectiveVolumes;
    condition.samples = series.samples(plan_.order);
    writeCondition({staging_.folder(), plan_.request.output.prefix, plan_.conditionLabels[index],
                    nodes_.nodes, order_, record_},
                   result, condition);
    record_.conditions.push_back(std::move(condition));
  }

  // Pictures of all conditions have the order of the first.
  void settleOrder(const connectome::ConditionResult& result) {
    order_ = pictureOrder(nodes_.nodes, result.of(connectome::Measure::kInstantaneous).values);
    if (!mostHaveNetworks(nodes_.nodes)) return;
    for (const std::size_t node : order_) {
      const std::string& network = nodes_.nodes[node].network;
      const bool isKnown =
          std::find(record_.networks.begin(), record_.networks.end(), network) != record_.networks.end();
      if (!network.empty() && !isKnown) record_.networks.push_back(network);
    }
  }

  const StudyPlan& plan_;
  const GivenNames& given_;
  int threads_;
  ProgressBar& progress_;
  connectome::Record& record_;
  ConnectomeNodes nodes_;
  Staging staging_;
  std::vector<std::size_t> order_;  // of pictures
};

// Files of the connectome that was there go where the new one has none of their names.
void removeOutdated(const fs::path& folder, const connectome::Record& before, const connectome::Record& now) {
  for (const auto& [name, size] : before.files) {
    const bool isPlain = fs::path(name).filename() == name;
    std::error_code ignored;
    if (isPlain && !now.files.contains(name)) fs::remove(folder / name, ignored);
  }
}

}  // namespace

ConnectomeOutcome runConnectome(const Request& request, StudyOptions options, ProgressBar& progress) {
  refuseWhatNoConnectomeHas(request);
  options.importsOnly = true;
  ConnectomeOutcome outcome;
  outcome.preparation = runStudy({request}, options, progress);
  if (outcome.preparation.failed()) return outcome;
  const StudyPlan& plan = outcome.preparation.prepared.at(0);
  requireNodes(plan);
  const GivenNames given = givenNames(plan);
  outcome.record = plannedRecord(plan, given);
  const fs::path folder = plan.request.output.folder;
  outcome.recordFile = folder / connectome::recordFileOf(plan.request.output.prefix);
  const auto there = recordThere(outcome.recordFile);
  if (there && !options.force) {
    refuseOther(plan, *there, outcome.record);
    outcome.kept = there->key == outcome.record.key && filesAreWhole(*there, folder);
  }
  if (outcome.kept) {
    outcome.record = *there;
    return outcome;
  }
  ConnectomeMaker(plan, given, options.jobs, progress, outcome.record).make();
  if (there) removeOutdated(folder, *there, outcome.record);
  return outcome;
}

}  // namespace study
