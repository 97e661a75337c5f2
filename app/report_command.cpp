// tavmap report: the HTML reports of an output folder, from what was saved there.
#include <iostream>
#include <memory>
#include <string>

#include "app/commands.h"
#include "app/study_options.h"
#include "report/reports.h"

namespace app {
namespace {

constexpr const char* kFooter =
    "Examples:\n  tavmap report results\n  tavmap report /out    every participant's, and an index over them";

int run(const std::string& folder) {
  for (const std::string& path : report::rebuildReports(folder)) std::cout << path << '\n';
  return 0;
}

}  // namespace

void addReportCommand(CLI::App& program) {
  const auto folder = std::make_shared<std::string>();
  CLI::App* command = program.add_subcommand("report", "Rebuild the HTML reports of saved results");
  command->add_option("OUT", *folder, "Output folder of `tavmap run` or `tavmap bids`")->required();
  command->footer(kFooter);
  command->callback([folder] { leaveWith([&] { return run(*folder); }); });
}

}  // namespace app
