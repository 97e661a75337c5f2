// tavmap report: the HTML reports of an output folder, from what was saved there.
#include <iostream>
#include <memory>
#include <string>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/study_options.h"
#include "report/reports.h"

namespace app {
namespace {

constexpr const char* kReportFooter =
    "Examples:\n  tavmap report results\n  tavmap report /out    every participant's, and an index over them";

struct ReportArguments {
  std::string folder;
  int jobs = 1;
  bool quiet = false;
};

int run(const ReportArguments& arguments) {
  for (const std::string& path : report::rebuildReports(arguments.folder, arguments.jobs))
    if (!arguments.quiet) std::cout << path << '\n';
  return kDone;
}

}  // namespace

void addReportCommand(CLI::App& program) {
  const auto arguments = std::make_shared<ReportArguments>();
  CLI::App* command = program.add_subcommand("report", "Rebuild the HTML reports of saved results");
  command->add_option("OUT", arguments->folder, "Output folder of `tavmap run` or `tavmap bids`")->required();
  command->add_option("-j,--jobs", arguments->jobs, "Threads that draw")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  command->add_flag("-q,--quiet", arguments->quiet, "Do not name the pages");
  command->footer(kReportFooter);
  command->callback([arguments] { leaveWith([&] { return run(*arguments); }); });
}

}  // namespace app
