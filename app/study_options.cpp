#include "app/study_options.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "app/exit_codes.h"
#include "app/study_reports.h"
#include "request/problem.h"
#include "study/study_summary.h"

namespace app {

const char* softwareVersion() {
  return TAVMAP_VERSION;
}

void addStudyOptions(CLI::App& command, StudyArguments& arguments) {
  command
      .add_option("-j,--jobs,--nthreads,--n-cpus", arguments.jobs,
                  "Worker processes; results do not depend on it")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  command
      .add_option("--seed,--random-seed", arguments.seed,
                  "Seed of all random numbers; stored with every result")
      ->check(CLI::Range(0U, 2147483647U));
  command.add_flag(
      "--force", arguments.force,
      "Compute again what is finished, replace what another request made under the same names, and "
      "remove results of references that are no longer asked for");
  command.add_flag("--no-report", arguments.noReport, "Write no HTML report");
  command.add_flag("-q,--quiet", arguments.quiet, "No progress and no summary; failures are still told");
  command.add_flag("--json", arguments.json, "Print the summary as JSON");
  command.add_option("--report-to", arguments.reportTo, "Descriptor of a pipe to report progress on")
      ->check(CLI::Range(3, 1 << 20))
      ->group("");  // for programs that start this one
}

namespace {

bool wantsReports(const study::StudyOptions& options, const StudyArguments& arguments) {
  return !arguments.noReport && !options.ordersOnly;
}

}  // namespace

int runRequests(const std::vector<study::Request>& requests, study::StudyOptions options,
                const StudyArguments& arguments) {
  options.program = kThisProgram;
  options.jobs = arguments.jobs;
  options.force = arguments.force;
  options.seed = arguments.seed;
  options.version = softwareVersion();
  study::StudyOutcome outcome;
  {
    study::ProgressBar progress(std::cerr, study::progressStyle(arguments.quiet));
    if (arguments.reportTo >= 0) progress.reportTo(arguments.reportTo);
    outcome = study::runStudy(requests, options, progress);
  }
  const StudyReports reports =
      wantsReports(options, arguments) ? writeReports(requests, options) : StudyReports{};
  if (arguments.json) {
    std::cout << withReports(study::summaryJson(outcome, options.version), reports).dump(2) << "\n";
  } else if (!arguments.quiet) {
    study::printSummary(outcome, std::cout);
    printReports(reports, std::cout);
  }
  if (!outcome.failed()) return reports.failures.empty() ? kDone : kFailed;
  const bool isAlone = requests.size() == 1 && options.withoutRequest.empty();
  return isAlone && outcome.inputProblem ? kWrongInput : kFailed;
}

void leaveWith(const std::function<int()>& action) {
  int code = kDone;
  try {
    code = action();
  } catch (const study::InputError& error) {
    throw UsageError(error.what());
  } catch (const study::Interrupted&) {
    std::cerr << "tavmap: interrupted; what is finished stays, repeat the command to go on\n";
    code = kInterrupted;
  }
  if (code != kDone) throw Reported{code};
}

}  // namespace app
