// tavmap plan: what requests or a data set will take, before anything runs.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/bids_options.h"
#include "app/commands.h"
#include "app/exit_codes.h"
#include "planning/study_table.h"
#include "request/request_file.h"

namespace app {
namespace {

namespace fs = std::filesystem;

struct PlanArguments {
  std::vector<std::string> what;
  BidsArguments bids;
};

constexpr const char* kPlanFooter =
    "Nothing is computed but for a miniature of the study, for a second or two, from which the time is "
    "known.\n"
    "Times hold for this machine when nothing else uses its processors.\n\n"
    "Examples:\n"
    "  tavmap plan study.toml --jobs 4\n"
    "  tavmap plan /data /out participant --atlas atlas_dseg.nii.gz --trial-types faces houses --jobs 8\n"
    "Exit codes: 0 done, 1 a participant cannot be computed, 2 wrong usage or input.";

bool isDataSet(const PlanArguments& arguments) {
  return fs::is_directory(arguments.what[0]);
}

study::BidsRequests requestsOfDataSet(PlanArguments& arguments) {
  const std::vector<std::string>& what = arguments.what;
  if (what.size() < 2 || what.size() > 3 || (what.size() == 3 && what[2] != "participant"))
    throw UsageError("plan: give request files, or BIDS_DIR OUT participant; only that level computes maps");
  arguments.bids.bidsDir = what[0];
  arguments.bids.outDir = what[1];
  return requestsOf(arguments.bids);
}

study::BidsRequests requestsOfFiles(const PlanArguments& arguments) {
  study::BidsRequests made;
  for (const std::string& file : arguments.what) made.requests.push_back(study::readRequestFile(file));
  return made;
}

int plan(PlanArguments& arguments) {
  study::BidsRequests made = isDataSet(arguments) ? requestsOfDataSet(arguments) : requestsOfFiles(arguments);
  const StudyArguments& study = arguments.bids.study;
  planning::StudyTable table;
  table.jobs = study.jobs;
  table.withoutRequest = std::move(made.failures);
  table.requests = planning::survey(
      made.requests,
      {.seed = study.seed, .version = softwareVersion(), .drawsSeeds = false, .force = study.force});
  const auto begin = std::chrono::steady_clock::now();
  table.expenses = planning::expensesOf(table.requests, fs::temp_directory_path());
  table.measuredSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  planning::collectWarnings(table);
  if (study.json)
    std::cout << planning::tableJson(table, softwareVersion()).dump(2) << "\n";
  else
    planning::printTable(table, std::cout);
  const bool all = table.withoutRequest.empty() &&
                   std::all_of(table.requests.begin(), table.requests.end(),
                               [](const planning::Surveyed& one) { return one.plan.has_value(); });
  return all ? kDone : kFailed;
}

}  // namespace

void addPlanCommand(CLI::App& program) {
  const auto arguments = std::make_shared<PlanArguments>();
  CLI::App* command = program.add_subcommand("plan", "Tell who can be computed, and what it will take");
  command->add_option("what", arguments->what, "Request files, or BIDS_DIR OUT participant")->required();
  addQueryOptions(*command, arguments->bids.options.query);
  addInputOptions(*command, arguments->bids);
  addRunningOptions(*command, arguments->bids);
  addStudyOptions(*command, arguments->bids.study);
  command->footer(kPlanFooter);
  command->callback([arguments] { leaveWith([&] { return plan(*arguments); }); });
}

}  // namespace app
