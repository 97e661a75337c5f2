// tavmap group: tests over participants.
#include <fmt/core.h>

#include <iostream>
#include <memory>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/group_options.h"
#include "app/study_options.h"
#include "group/group.h"
#include "results/output_folder.h"

namespace app {
namespace {

constexpr const char* kGroupFooter =
    "What is tested: Ref2Vox, Vox2Ref and Inst as z against each voxel's own null values; dTAV as it is, "
    "and\n"
    "dTAVrev, which is dTAV minus that of reversed time: of a mean it alone speaks of a lead\n"
    "(docs/group.md). The tests of one command share their options; a model file has several tests:\n"
    "  tavmap group --example > group.toml\n\n"
    "Examples:\n"
    "  tavmap group /out --map dTAV --reference V1 --name mean\n"
    "  tavmap group /out --within 'faces - houses' --name facesHouses\n"
    "  tavmap group /out --contrast 'patient - control' --covariates age --name patients\n"
    "  tavmap group /out --model group.toml --jobs 8\n"
    "Exit codes: 0 done, 1 a test failed, 2 wrong usage or input.";

struct GroupArguments {
  std::string outDir, participants;
  study::BidsQuery query;
  GroupTestArguments tests;
  bool leaveOutOutdated = false, isExample = false;
};

int group(const GroupArguments& arguments) {
  if (arguments.isExample) {
    std::cout << study::exampleGroupModel();
    return kDone;
  }
  if (arguments.outDir.empty()) throw UsageError("give the output folder of the participant level");
  study::GroupOptions options;
  options.query = arguments.query;
  options.outdated = arguments.leaveOutOutdated ? study::Outdated::kLeftOut : study::Outdated::kRefused;
  const study::GroupResult result = study::readGroup(arguments.outDir, options);
  for (const std::string& failure : result.failures) std::cerr << "tavmap: " << failure << "\n";
  const study::Participants participants = arguments.participants.empty()
                                               ? study::participantsOf("", arguments.outDir)
                                               : study::Participants::read(arguments.participants);
  const int code = runGroupTests(result, participants, arguments.outDir, arguments.tests);
  return result.failures.empty() ? code : kFailed;
}

}  // namespace

void addGroupCommand(CLI::App& program) {
  const auto arguments = std::make_shared<GroupArguments>();
  CLI::App* command =
      program.add_subcommand("group", "Test over participants, between conditions and groups");
  command->add_option("OUT", arguments->outDir, "Output folder of `tavmap bids ... participant`");
  command->add_flag("--example", arguments->isExample, "Print a model file with every key explained");
  command->add_option(
      "--participants", arguments->participants,
      "Table of participants; default: participants.tsv of the data set that OUT was made from");
  command->add_option("--participant-label", arguments->query.participants,
                      "Participants, with or without 'sub-'");
  command->add_option("--session-label", arguments->query.sessions, "Sessions");
  command->add_option("--task-label", arguments->query.tasks, "Tasks");
  command->add_option("--space", arguments->query.space, "Space of the maps");
  command->add_flag("--leave-out-outdated", arguments->leaveOutOutdated,
                    "Go on without records whose inputs are gone or were changed since");
  addGroupTestOptions(*command, arguments->tests);
  command->footer(kGroupFooter);
  command->callback([arguments] { leaveWith([&] { return group(*arguments); }); });
}

}  // namespace app
