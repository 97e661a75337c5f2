// tavmap simulate: a data set with planted influences and the truth beside it.
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "simulation/bids_tree.h"
#include "simulation/data_set.h"

namespace app {
namespace {

struct SimulateArguments {
  std::string folder;
  std::vector<int> grid{24, 28, 20};
  simulation::DataSetOptions options;
  bool bids = false, groupStudy = false;
  std::optional<int> participants;
  simulation::GroupDesign design;
};

constexpr int kParticipantsOfTree = 2;
const std::map<std::string, simulation::Spoilt> kSpoiltWords = {{"motion", simulation::Spoilt::kByMotion},
                                                                {"cut-short", simulation::Spoilt::kCutShort},
                                                                {"none", simulation::Spoilt::kNot}};

constexpr const char* kSimulateExamples = R"(
Examples:
  tavmap simulate sim
      two runs of 160 volumes, nine regions, truth.json
  tavmap host TAVPlugin.so --anatomy sim/anatomy.nii.gz --vtc sim/run-1.vtc \
      --vois sim/dseg.nii.gz --script sim/answers.txt
  tavmap recover sim/maps/sim_Reference.tav sim/truth.json --labels sim/dseg.nii.gz
      maps of the reference region over whole runs, and whether they show what was planted
      (answers-protocol.txt takes the blocks of faces: fewer volumes, too few for some regions)
  tavmap simulate null --strength 0 --seed 7
      the same without any influence
  tavmap simulate study --bids --participants 2
      a BIDS data set with derivatives in the manner of fMRIPrep
  tavmap simulate study --group-study --participants 20 --condition-effect 0
      two groups, of which one follows the reference more strongly; study_truth.json in
      derivatives/atlas says where

The same options give the same files, on every machine.)";

void refuse(const std::string& problem) {
  if (!problem.empty()) throw UsageError("cannot simulate this: " + problem);
}

// Returns how many took part.
int write(SimulateArguments& arguments) {
  const int participants = arguments.participants.value_or(
      arguments.groupStudy ? arguments.design.participants : kParticipantsOfTree);
  if (arguments.groupStudy) {
    arguments.design.participants = participants;
    refuse(simulation::problemWith(arguments.design));
    simulation::writeGroupStudy(arguments.folder, arguments.options, arguments.design);
    return participants;
  }
  if (arguments.participants && !arguments.bids)
    throw UsageError("--participants is for --bids and --group-study; give one of them");
  if (arguments.bids) {
    simulation::writeBidsTree(arguments.folder, arguments.options, participants);
    return participants;
  }
  simulation::writeDataSet(arguments.folder, arguments.options);
  return 1;
}

void simulate(SimulateArguments& arguments) {
  formats::GridSize& grid = arguments.options.head.grid;
  grid = {arguments.grid[0], arguments.grid[1], arguments.grid[2]};
  refuse(simulation::problemWith(arguments.options));
  const int people = write(arguments);
  std::cerr << "Wrote " << people * arguments.options.runs << " simulated runs to " << arguments.folder
            << '\n';
}

void addDataOptions(CLI::App* command, const std::shared_ptr<SimulateArguments>& arguments) {
  simulation::DataSetOptions& options = arguments->options;
  command->add_option("folder", arguments->folder, "Where to write; created when it is missing")->required();
  command->add_option("--seed", options.seed, "Another number, another data set")->capture_default_str();
  command->add_option("--runs", options.runs, "Number of runs")->capture_default_str();
  command->add_option("--volumes", options.volumes, "Volumes of each run")->capture_default_str();
  command->add_option("--grid", arguments->grid, "Voxels along x, y and z, as X,Y,Z")
      ->delimiter(',')
      ->expected(3)
      ->capture_default_str();
  command->add_option("--voxel", options.head.voxelMm, "Edge of a voxel in mm")->capture_default_str();
  command->add_option("--tr", options.trMs, "Repetition time in ms")->capture_default_str();
  command->add_option("--strength", options.strength, "Scales all influences; 0 plants none")
      ->capture_default_str();
}

void addTreeOptions(CLI::App* command, const std::shared_ptr<SimulateArguments>& arguments) {
  simulation::GroupDesign& design = arguments->design;
  command->add_flag("--bids", arguments->bids, "A BIDS tree with preprocessed derivatives instead");
  CLI::Option* study = command->add_flag(
      "--group-study", arguments->groupStudy,
      "A BIDS tree of two groups and two conditions, in which one region follows the reference more in one "
      "group and one in one condition; participants differ in strength and motion");
  command
      ->add_option("--participants", arguments->participants,
                   "Participants of the BIDS tree [2, of a group study 16]")
      ->check(CLI::Range(1, simulation::kMostParticipants));
  command
      ->add_option("--group-effect", design.groupEffect,
                   "Difference of the groups as a share of their mean, 0 to 1")
      ->needs(study)
      ->capture_default_str();
  command->add_option("--condition-effect", design.conditionEffect, "The same of the conditions")
      ->needs(study)
      ->capture_default_str();
  command
      ->add_option("--spread", design.spread, "Standard deviation of the participants' strengths, 0 to 0.3")
      ->needs(study)
      ->capture_default_str();
  command
      ->add_option(
          "--spoilt", design.last,
          "What spoils the data of the last participant: motion, cut-short (the last run breaks off) "
          "or none [motion]")
      ->needs(study)
      ->transform(CLI::CheckedTransformer(kSpoiltWords))
      ->option_text("WORD");
}

}  // namespace

void addSimulateCommand(CLI::App& program) {
  CLI::App* command =
      program.add_subcommand("simulate", "A data set with planted influences and the truth beside it");
  const auto arguments = std::make_shared<SimulateArguments>();
  addDataOptions(command, arguments);
  addTreeOptions(command, arguments);
  command->footer(kSimulateExamples);
  command->callback([arguments] { simulate(*arguments); });
}

}  // namespace app
