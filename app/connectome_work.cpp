#include "app/connectome_work.h"

#include <algorithm>
#include <iostream>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "formats/file_error.h"
#include "report/connectome_page.h"
#include "request/problem.h"

namespace app {
namespace {

study::StudyOptions optionsFrom(const StudyArguments& arguments) {
  study::StudyOptions options;
  options.program = kThisProgram;
  options.jobs = arguments.jobs;
  options.force = arguments.force;
  options.seed = arguments.seed;
  options.version = softwareVersion();
  return options;
}

std::string writePage(const study::ConnectomeOutcome& outcome) {
  const std::string file = outcome.recordFile.filename().string(), end = ::connectome::recordFileOf("");
  return report::writeConnectomePage(outcome.recordFile.parent_path(),
                                     file.substr(0, file.size() - end.size()));
}

int failedWith(const std::exception& error, int code) {
  std::cerr << "tavmap: " << error.what() << "\n";
  return code;
}

int makeOne(const study::Request& request, const StudyArguments& arguments) {
  try {
    const ConnectomeWork work = makeConnectome(request, arguments);
    if (work.outcome.preparation.failed())
      return work.outcome.preparation.inputProblem ? kWrongInput : kFailed;
    if (!arguments.quiet && !arguments.json && !work.page.empty())
      std::cout << "Connectome: " << work.page << "\n";
    return kDone;
  } catch (const study::InputError& error) {
    return failedWith(error, kWrongInput);
  } catch (const study::RunError& error) {
    return failedWith(error, kFailed);
  } catch (const formats::FileError& error) {
    return failedWith(error, kFailed);
  }
}

}  // namespace

ConnectomeWork makeConnectome(const study::Request& request, const StudyArguments& arguments) {
  ConnectomeWork work;
  {
    study::ProgressBar progress(std::cerr, study::progressStyle(arguments.quiet));
    work.outcome = study::runConnectome(request, optionsFrom(arguments), progress);
  }
  if (!work.outcome.preparation.failed() && !arguments.noReport) work.page = writePage(work.outcome);
  return work;
}

int makeConnectomes(const std::vector<study::Request>& requests, const StudyArguments& arguments) {
  int worst = kDone;
  for (const study::Request& request : requests) {
    const int code = makeOne(request, arguments);
    if (worst == kDone) worst = code;
  }
  return requests.size() > 1 && worst != kDone ? kFailed : worst;
}

}  // namespace app
