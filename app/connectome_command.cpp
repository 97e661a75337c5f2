// tavmap connectome: every region of a request with every other one.
#include <fmt/core.h>

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands.h"
#include "app/connectome_work.h"
#include "app/exit_codes.h"
#include "app/study_options.h"
#include "request/request_file.h"
#include "study/connectome_summary.h"

namespace app {
namespace {

struct ConnectomeArguments {
  std::string request, out, work;
  std::vector<std::string> conditionOn;
  StudyArguments study;
};

study::Request requestOf(const ConnectomeArguments& arguments) {
  study::Request request = study::readRequestFile(arguments.request);
  if (!arguments.out.empty()) request.output.folder = arguments.out;
  if (!arguments.work.empty()) request.output.workFolder = arguments.work;
  if (!arguments.conditionOn.empty()) request.connectome.conditionOn = arguments.conditionOn;
  return request;
}

int runConnectomeVerb(const ConnectomeArguments& arguments) {
  const ConnectomeWork work = makeConnectome(requestOf(arguments), arguments.study);
  const study::ConnectomeOutcome& outcome = work.outcome;
  if (outcome.preparation.failed()) return outcome.preparation.inputProblem ? kWrongInput : kFailed;
  if (arguments.study.json) {
    nlohmann::ordered_json json = study::connectomeSummaryJson(outcome);
    if (!work.page.empty()) json["Page"] = work.page;
    std::cout << json.dump(2) << "\n";
  } else if (!arguments.study.quiet) {
    study::printConnectome(outcome, std::cout);
    if (!work.page.empty()) std::cout << "Page: " << work.page << "\n";
  }
  return kDone;
}

constexpr const char* kConnectomeFooter =
    "Every reference of the request, normally all labels of an atlas, with every other: the influence in "
    "both\n"
    "directions, their difference and the instantaneous influence, from one fit per pair. p, q and "
    "family-wise p\n"
    "are those of surrogates of all regions ([connectome] of the request says how many). Matrices, tables of "
    "nodes\n"
    "and of edges and a page go into the output folder; docs/connectome.md says how to read them.\n"
    "Example:\n  tavmap connectome study.toml --jobs 4 --seed 1\n"
    "Exit codes: 0 done, 1 failed, 2 wrong usage or input, 130 interrupted.";

}  // namespace

void addConnectomeCommand(CLI::App& program) {
  const auto arguments = std::make_shared<ConnectomeArguments>();
  CLI::App* command =
      program.add_subcommand("connectome", "Compute every region of a request with every other");
  command->add_option("request", arguments->request, "Request file (TOML)")->required();
  command->add_option("-o,--out", arguments->out, "Output folder, instead of the request's");
  command->add_option("-w,--work-dir", arguments->work, "Work folder for imported runs");
  command->add_option(
      "--condition-on", arguments->conditionOn,
      "Series that all measures are given, instead of the request's: \"global signal\", names of "
      "references, or \"all others\"");
  addStudyOptions(*command, arguments->study);
  command->footer(kConnectomeFooter);
  command->callback([arguments] { leaveWith([&] { return runConnectomeVerb(*arguments); }); });
}

}  // namespace app
