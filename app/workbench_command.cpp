// tavmap workbench: the page on which one explores.
#include <fmt/core.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <thread>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/study_options.h"
#include "app/workbench_sources.h"
#include "study/interrupt.h"
#include "workbench/browser.h"
#include "workbench/workbench.h"

namespace app {
namespace {

constexpr auto kBetweenLooks = std::chrono::milliseconds(100);

constexpr const char* kWorkbenchExamples = R"(
Examples:
  tavmap workbench study.toml                  explore and run a request
  tavmap workbench results/                    browse results
  tavmap workbench bids/ --folder results/     choose runs of a BIDS data set
  tavmap workbench --bold run1_bold.nii.gz --mask mask.nii.gz --anatomy t1.nii.gz \
      --atlas dseg.nii.gz --plugin TAVPlugin.so --vtc run1.vtc --vois vois.json

The address that it prints opens the page; whoever has it can read the named folders and start
runs, so it is for you alone. It is reached from this machine only; over ssh, forward the port.
Nothing is written outside the work folder and the output folders of requests.

Ctrl-C ends it. Runs that it started are stopped; what they finished stays, and "resume" goes on.

Exit codes: 0 ended by Ctrl-C, 1 failed, 2 wrong usage or input.)";

void sayWhere(const workbench::Workbench& bench) {
  std::cout << "The workbench is at\n  " << bench.address() << "\n" << workbench::sshWords(bench.port())
            << "Ctrl-C ends it." << std::endl;
}

int serve(const WorkbenchArguments& arguments) {
  const study::InterruptGuard guard;
  workbench::Workbench bench(sourcesOf(arguments), arguments.port);
  bench.start();
  sayWhere(bench);
  const workbench::Browser browser(arguments.noBrowser ? "" : bench.address(), workFolderOf(arguments));
  while (!study::interruptRequested()) std::this_thread::sleep_for(kBetweenLooks);
  std::cout << "\nEnding the workbench." << std::endl;
  bench.stop();
  return kDone;
}

}  // namespace

void addWorkbenchCommand(CLI::App& program) {
  const auto arguments = std::make_shared<WorkbenchArguments>();
  CLI::App* command = program.add_subcommand("workbench", "Explore maps, results and runs in the browser");
  addWorkbenchSources(*command, *arguments);
  command->add_option("--port", arguments->port, "Port on this machine (default: one that is free)")
      ->check(CLI::Range(1024, 65535));
  command->add_flag("--no-browser", arguments->noBrowser, "Print the address, open no browser");
  command->footer(kWorkbenchExamples);
  command->callback([arguments] { leaveWith([&] { return serve(*arguments); }); });
}

}  // namespace app
