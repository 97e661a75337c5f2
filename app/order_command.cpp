// tavmap order: what the data of a request say about the model order.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/study_options.h"
#include "formats/atomic_file.h"
#include "request/request_file.h"
#include "study/order_evidence.h"
#include "study/order_sensitivity.h"
#include "study/study_summary.h"

namespace app {
namespace {

struct OrderArguments {
  std::string request, out, work;
  int maxOrder = 0;
  bool sensitivity = false;
  StudyArguments study;
};

study::Request requestOf(const OrderArguments& arguments) {
  study::Request request = study::readRequestFile(arguments.request);
  if (!arguments.out.empty()) request.output.folder = arguments.out;
  if (!arguments.work.empty()) request.output.workFolder = arguments.work;
  if (arguments.maxOrder > 0) request.settings.maxOrder = arguments.maxOrder;
  if (arguments.study.seed) request.seed = arguments.study.seed;
  return request;
}

study::StudyOptions optionsOf(const OrderArguments& arguments) {
  study::StudyOptions options;
  options.program = kThisProgram;
  options.jobs = arguments.study.jobs;
  options.force = arguments.study.force;
  options.version = softwareVersion();
  return options;
}

// The order that the maps of the request would have.
int orderInUse(const study::Request& request, const study::OrderEvidence& evidence) {
  const study::Settings& settings = request.settings;
  const bool fixed = settings.orderChoice == study::OrderChoice::kFixed;
  return fixed ? settings.order : evidence.best(settings.orderChoice);
}

std::vector<study::ResultsOfOrder> resultsOf(const std::vector<study::Request>& requests,
                                             const study::StudyOutcome& outcome) {
  std::vector<study::ResultsOfOrder> results;
  for (const study::Request& request : requests) {
    results.push_back({request.settings.order, request.output.folder, {}});
    for (const study::ReferenceOutcome& reference : outcome.references)
      if (reference.request == request.title) results.back().records.push_back(reference.record);
  }
  return results;
}

// Computes the maps at every order and writes their table; unset when one of them failed, which has been
// said.
std::optional<study::OrderSensitivity> sensitivityOf(const study::Request& request, int base,
                                                     const study::StudyOptions& options,
                                                     study::ProgressBar& progress, study::StudyOutcome& all) {
  const std::vector<study::Request> requests = study::requestsOfOrders(request);
  const study::StudyOutcome outcome = study::runStudy(requests, options, progress);
  if (outcome.failed()) {
    all.inputProblem = outcome.inputProblem;
    return std::nullopt;
  }
  study::OrderSensitivity found = study::compareOrders(resultsOf(requests, outcome), base);
  const auto& output = request.output;
  formats::writeTextFile((output.folder / (output.prefix + "_desc-ordersensitivity_statmap.tsv")).string(),
                         study::sensitivityTable(found));
  return found;
}

void report(const study::StudyOutcome& outcome, const std::optional<study::OrderSensitivity>& sensitivity,
            bool asJson) {
  if (asJson) {
    nlohmann::ordered_json json = study::summaryJson(outcome, softwareVersion());
    if (sensitivity) json["OrderSensitivity"] = study::sensitivityJson(*sensitivity);
    std::cout << json.dump(2) << "\n";
    return;
  }
  study::printOrders(outcome.orders.at(0).evidence, std::cout);
  if (sensitivity) study::printSensitivity(*sensitivity, std::cout);
}

int order(const OrderArguments& arguments) {
  const study::Request request = requestOf(arguments);
  study::StudyOptions options = optionsOf(arguments);
  options.ordersOnly = true;
  study::StudyOutcome outcome;
  std::optional<study::OrderSensitivity> sensitivity;
  {
    study::ProgressBar progress(std::cerr, study::progressStyle(arguments.study.quiet));
    outcome = study::runStudy({request}, options, progress);
    if (outcome.failed()) return outcome.inputProblem ? kWrongInput : kFailed;
    if (arguments.sensitivity) {
      const int base = orderInUse(request, outcome.orders.at(0).evidence);
      sensitivity = sensitivityOf(request, base, optionsOf(arguments), progress, outcome);
      if (!sensitivity) return outcome.inputProblem ? kWrongInput : kFailed;
    }
  }
  report(outcome, sensitivity, arguments.study.json);
  return kDone;
}

}  // namespace

void addOrderCommand(CLI::App& program) {
  const auto arguments = std::make_shared<OrderArguments>();
  CLI::App* command =
      program.add_subcommand("order", "Show which model order the data of a request speak for");
  command->add_option("request", arguments->request, "Request file (TOML)")->required();
  command->add_option("--max-order", arguments->maxOrder, "Highest order to try, instead of the request's")
      ->check(CLI::Range(1, 20));
  command->add_option("-o,--out", arguments->out, "Folder for the curves, instead of the request's");
  command->add_option("-w,--work-dir", arguments->work, "Work folder for imported runs");
  command->add_flag("--sensitivity", arguments->sensitivity,
                    "Compute the maps at every order and show which voxels pass at all of them");
  addStudyOptions(*command, arguments->study);
  command->footer(
      "Information criteria of the references' own courses and of joint models with a sample of voxels,\n"
      "Schwarz (BIC), Akaike (AIC) and Hannan-Quinn (HQC). The curves are saved in the output folder.\n"
      "With --sensitivity also how many voxels pass at each order, and keep their sign, as a table there; "
      "the\n"
      "maps of every order stay in the work folder.\n"
      "Example:\n  tavmap order study.toml --max-order 6");
  command->callback([arguments] { leaveWith([&] { return order(*arguments); }); });
}

}  // namespace app
