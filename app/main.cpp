// `tavmap`: one subcommand per verb.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "formats/file_error.h"
#include "tav/voxel_path.h"

namespace {

int report(const std::exception& error, int exitCode) {
  std::cerr << "tavmap: " << error.what() << '\n';
  return exitCode;
}

// The version, and the compute path that a run would take here and now.
std::string versionText() {
  std::ostringstream trouble;
  const std::unique_ptr<tav::VoxelPath> path = tav::makeVoxelPath(trouble);
  return std::string("tavmap " TAVMAP_VERSION ", kernel ") +
         (path ? path->name() : "unusable: " + trouble.str());
}

int run(int argc, char** argv) {
  CLI::App program{"Whole-brain maps of directed influence from fMRI", "tavmap"};
  program.require_subcommand(1);
  program.set_version_flag("--version", versionText, "Print the version and the kernel in use");
  app::addRunCommand(program);
  app::addBidsCommand(program);
  app::addOrderCommand(program);
  app::addConvertCommand(program);
  app::addInfoCommand(program);
  app::addPictureCommand(program);
  app::addExportCommand(program);
  app::addRecoverCommand(program);
  app::addSimulateCommand(program);
  app::addHostCommand(program);
  app::addWorkerCommand(program);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // CLI11 has an exit code for every kind of wrong usage; callers need only one.
    return program.exit(error) == 0 ? app::kDone : app::kWrongInput;
  }
  return app::kDone;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const app::Reported& reported) {
    return reported.exitCode;
  } catch (const formats::FileError& error) {
    return report(error, error.fault() == formats::Fault::kInput ? app::kWrongInput : app::kFailed);
  } catch (const app::UsageError& error) {
    return report(error, app::kWrongInput);
  } catch (const std::exception& error) {
    return report(error, app::kFailed);
  }
}
