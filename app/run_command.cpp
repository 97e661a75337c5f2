// tavmap run: compute the maps of a request.
#include <fmt/core.h>

#include <iostream>
#include <memory>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/study_options.h"
#include "request/request_file.h"

namespace app {
namespace {

struct RunArguments {
  std::string request, out, work;
  bool example = false;
  StudyArguments study;
};

int run(const RunArguments& arguments) {
  if (arguments.example) {
    std::cout << study::exampleRequest();
    return kDone;
  }
  if (arguments.request.empty())
    throw UsageError("run needs a request file; `tavmap run --example` prints one");
  study::Request request = study::readRequestFile(arguments.request);
  if (!arguments.out.empty()) request.output.folder = arguments.out;
  if (!arguments.work.empty()) request.output.workFolder = arguments.work;
  return runRequests({request}, {}, arguments.study);
}

std::string footer() {
  return fmt::format(
      "Methods, chosen with 'method' in [settings]:\n  {}\n  {}\n\nExamples:\n  tavmap run --example > "
      "study.toml\n  tavmap run study.toml --jobs 4 --seed 1\nExit codes: 0 done, 1 failed, 2 wrong usage or "
      "input, 130 interrupted.",
      study::methodDescription(study::Method::kCalibrated), study::methodDescription(study::Method::kPlugin));
}

}  // namespace

void addRunCommand(CLI::App& program) {
  const auto arguments = std::make_shared<RunArguments>();
  CLI::App* command = program.add_subcommand("run", "Compute the maps of a request");
  command->add_option("request", arguments->request, "Request file (TOML)");
  command->add_flag("--example", arguments->example, "Print a request with every key explained");
  command->add_option("-o,--out", arguments->out, "Output folder, instead of the request's");
  command->add_option("-w,--work-dir", arguments->work, "Work folder for imported runs");
  addStudyOptions(*command, arguments->study);
  command->footer(footer());
  command->callback([arguments] { leaveWith([&] { return run(*arguments); }); });
}

}  // namespace app
