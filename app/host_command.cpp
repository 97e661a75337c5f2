// tavmap host: one run of a plug-in under the stand-in host.
#include <fmt/core.h>
#include <unistd.h>

#include <cstdint>
#include <iostream>
#include <memory>
#include <utility>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "host/edited_lines.h"
#include "host/recording_front_end.h"
#include "host/script_front_end.h"
#include "host/session.h"
#include "host/terminal_front_end.h"

namespace app {
namespace {

struct HostArguments {
  host::SessionOptions session;
  std::string version, script, record;
  std::int64_t seed = 0;
};

constexpr const char* kHostExamples = R"(
Examples:
  tavmap host TAVPlugin.so --anatomy t1.nii.gz --vtc run1.vtc --vois dseg.nii.gz
      answer the dialogs at the terminal
  tavmap host TAVPlugin.so --anatomy t1.nii.gz --vtc run1.vtc --vois vois.json \
      --protocol events.tsv --script answers.txt --seed 7
      answer them from a file, repeatably
  tavmap host TAVPlugin.so --anatomy t1.nii.gz --vtc run1.vtc --vois vois.json --record answers.txt
      answer them at the terminal and keep the answers

An answer script has one answer a dialog: integer N, text WORDS, float X, open FILE,
save FILE, yes, no, cancel, and "message PART" for a message box with that text.
At the terminal, "cancel" or Ctrl-D cancels a dialog and "quit" ends the run. An entry of a
list is answered by its number, its name or a part of it. Lines can be edited, arrow keys
bring earlier ones back, and the Tab key completes file names and names of lists. Enter takes
what is in brackets, which is the file of --vtc or --protocol where such a file is asked for.

Exit codes: 0 done, 1 the run failed or reported errors, 2 wrong usage or input.)";

std::unique_ptr<host::FrontEnd> terminalFrontEnd(const host::SessionOptions& session) {
  // C's stdin remembers the end of its input, so that one Ctrl-D would answer every later dialog.
  std::ios::sync_with_stdio(false);
  const bool typed = isatty(STDIN_FILENO) != 0;
  std::unique_ptr<host::LineReader> lines;
  if (host::EditedLines::arePossible())
    lines = std::make_unique<host::EditedLines>();
  else
    lines = std::make_unique<host::StreamLines>(std::cin, std::cout, !typed);
  const bool person = typed && isatty(STDOUT_FILENO) != 0;
  return std::make_unique<host::TerminalFrontEnd>(
      std::move(lines), std::cout, host::TerminalOptions{person, session.vtcPath, session.protocolPath});
}

std::unique_ptr<host::FrontEnd> makeFrontEnd(const HostArguments& arguments) {
  std::unique_ptr<host::FrontEnd> frontEnd;
  if (arguments.script.empty())
    frontEnd = terminalFrontEnd(arguments.session);
  else
    frontEnd = std::make_unique<host::ScriptFrontEnd>(host::readScript(arguments.script), std::cout);
  if (arguments.record.empty()) return frontEnd;
  return std::make_unique<host::RecordingFrontEnd>(std::move(frontEnd), arguments.record);
}

int runHost(HostArguments& arguments) {
  const std::optional<host::HostVersion> version = host::parseVersion(arguments.version);
  if (!version)
    throw UsageError(fmt::format("--host-version {}: a version looks like 2.1.0", arguments.version));
  arguments.session.version = *version;
  try {
    const std::unique_ptr<host::FrontEnd> frontEnd = makeFrontEnd(arguments);
    return host::runSession(arguments.session, *frontEnd, std::cout, std::cerr);
  } catch (const host::RunEnded& end) {
    std::cerr << "tavmap: " << end.message << '\n';
    return end.exitCode;
  }
}

}  // namespace

void addHostCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("host", "Run a plug-in under the stand-in host");
  const auto arguments = std::make_shared<HostArguments>();
  host::SessionOptions& session = arguments->session;
  command->add_option("plugin", session.pluginPath, "The plug-in, a shared library")->required();
  command->add_option("--anatomy", session.anatomyPath, "Current anatomy, a NIfTI image");
  command->add_option("--vtc", session.vtcPath, "VTC linked to it (made by tavmap convert)");
  command->add_option("--vois", session.voisPath, "VOI list: a label image, or JSON");
  command->add_option("--voi-table", session.voiTablePath,
                      "Names of the labels (default: the .tsv beside the image)");
  command->add_option("--protocol", session.protocolPath,
                      "Protocol: a BIDS events table, or a table of volumes");
  command->add_option("--plugins-folder", session.pluginsFolder,
                      "Where TAVPlugin.ini is (default: the plug-in's folder)");
  command->add_option("--host-version", arguments->version, "Version that the host reports")
      ->default_val("2.1.0");
  CLI::Option* seed =
      command->add_option("--seed", arguments->seed, "Repeatable run: stands for the wall-clock second");
  seed->check(CLI::NonNegativeNumber);
  command->add_option("--script", arguments->script, "Take the answers from this file");
  command->add_option(
      "--record", arguments->record,
      "Write the answers of this session into this new file, a script for --script, also when "
      "the session fails");
  command->add_option("--log-file", session.logPath, "Write the log pane into this file as well");
  command->add_flag("--quiet", session.quiet, "Show dialogs and errors only");
  command->footer(kHostExamples);
  command->callback([arguments, seed] {
    if (seed->count() > 0) arguments->session.seed = arguments->seed;
    const int exitCode = runHost(*arguments);
    if (exitCode != kDone) throw Reported{exitCode};
  });
}

}  // namespace app
