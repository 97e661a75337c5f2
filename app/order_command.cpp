// tavmap order: what the data of a request say about the model order.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/study_options.h"
#include "request/request_file.h"
#include "study/order_evidence.h"
#include "study/study_summary.h"

namespace app {
namespace {

struct OrderArguments {
  std::string request, out, work;
  int maxOrder = 0;
  StudyArguments study;
};

int order(const OrderArguments& arguments) {
  study::Request request = study::readRequestFile(arguments.request);
  if (!arguments.out.empty()) request.output.folder = arguments.out;
  if (!arguments.work.empty()) request.output.workFolder = arguments.work;
  if (arguments.maxOrder > 0) request.settings.maxOrder = arguments.maxOrder;
  study::StudyOptions options;
  options.program = kThisProgram;
  options.jobs = arguments.study.jobs;
  options.version = softwareVersion();
  options.ordersOnly = true;
  study::StudyOutcome outcome;
  {
    study::ProgressBar progress(std::cerr, study::progressStyle(arguments.study.quiet));
    outcome = study::runStudy({request}, options, progress);
  }
  if (outcome.failed()) return outcome.inputProblem ? kWrongInput : kFailed;
  if (arguments.study.json)
    std::cout << study::summaryJson(outcome, options.version).dump(2) << "\n";
  else
    study::printOrders(outcome.orders.at(0).evidence, std::cout);
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
  addStudyOptions(*command, arguments->study);
  command->footer(
      "Information criteria of the references' own courses and of joint models with a sample of voxels,\n"
      "Schwarz (BIC), Akaike (AIC) and Hannan-Quinn (HQC). The curves are saved in the output folder.\n"
      "Example:\n  tavmap order study.toml --max-order 6");
  command->callback([arguments] { leaveWith([&] { return order(*arguments); }); });
}

}  // namespace app
