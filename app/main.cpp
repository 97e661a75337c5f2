// `tavmap`: one subcommand per verb.
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/suggestions.h"
#include "formats/file_error.h"
#include "report/report.h"
#include "tav/voxel_path.h"

namespace {

int told(const std::exception& error, int exitCode) {
  std::cerr << "tavmap: " << error.what() << '\n';
  return exitCode;
}

// The version, and the compute path that a run would take here and now.
std::string versionText() {
  std::ostringstream trouble;
  const std::unique_ptr<tav::VoxelPath> path = tav::makeVoxelPath(trouble);
  return std::string("tavmap " TAVMAP_VERSION ", kernel ") +
         (path ? path->name() : "unusable: " + trouble.str()) +
         (report::isInteractive() ? "" : ", reports without interaction");
}

int run(int argc, char** argv) {
  CLI::App program{"Whole-brain maps of directed influence from fMRI", "tavmap"};
  program.require_subcommand(1);
  program.set_version_flag("--version", versionText, "Print the version and the kernel in use");
  app::addRunCommand(program);
  app::addBidsCommand(program);
  app::addGroupCommand(program);
  app::addPlanCommand(program);
  app::addConnectomeCommand(program);
  app::addOrderCommand(program);
  app::addConvertCommand(program);
  app::addInfoCommand(program);
  app::addPictureCommand(program);
  app::addReportCommand(program);
  app::addExportCommand(program);
  app::addRecoverCommand(program);
  app::addSimulateCommand(program);
  app::addHostCommand(program);
  app::addWorkbenchCommand(program);
  app::addWorkerCommand(program);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // CLI11 has an exit code for every kind of wrong usage; callers need only one.
    if (program.exit(error) == 0) return app::kDone;
    for (const std::string& sentence : app::suggestionsFor(program))
      std::cerr << "tavmap: " << sentence << '\n';
    return app::kWrongInput;
  }
  return app::kDone;
}

// What was printed has arrived, or the program has failed: a full disk may tell only now.
int afterOutput(int exitCode) {
  errno = 0;
  const bool isFlushed = std::fflush(stdout) == 0;
  if (isFlushed && std::cout.good()) return exitCode;
  std::cerr << "tavmap: cannot write to standard output ("
            << (errno != 0 ? std::strerror(errno) : "its disk is full, or it is closed")
            << "); free some space or send it elsewhere, and repeat the command\n";
  return exitCode == app::kDone ? app::kFailed : exitCode;
}

int runAndReport(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const app::Reported& reported) {
    return reported.exitCode;
  } catch (const formats::FileError& error) {
    return told(error, error.fault() == formats::Fault::kInput ? app::kWrongInput : app::kFailed);
  } catch (const app::UsageError& error) {
    return told(error, app::kWrongInput);
  } catch (const std::exception& error) {
    return told(error, app::kFailed);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return afterOutput(runAndReport(argc, argv));
}
