// tavmap simulate: a data set with planted influences and the truth beside it.
#include <iostream>
#include <memory>
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
  bool bids = false;
  int participants = 2;
};

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

The same options give the same files, on every machine.)";

void simulate(SimulateArguments& arguments) {
  formats::GridSize& grid = arguments.options.head.grid;
  grid = {arguments.grid[0], arguments.grid[1], arguments.grid[2]};
  const std::string problem = simulation::problemWith(arguments.options);
  if (!problem.empty()) throw UsageError("cannot simulate this: " + problem);
  if (arguments.bids)
    simulation::writeBidsTree(arguments.folder, arguments.options, arguments.participants);
  else
    simulation::writeDataSet(arguments.folder, arguments.options);
  const int people = arguments.bids ? arguments.participants : 1;
  std::cerr << "Wrote " << people * arguments.options.runs << " simulated runs to " << arguments.folder
            << '\n';
}

}  // namespace

void addSimulateCommand(CLI::App& program) {
  CLI::App* command =
      program.add_subcommand("simulate", "A data set with planted influences and the truth beside it");
  const auto arguments = std::make_shared<SimulateArguments>();
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
  CLI::Option* bids =
      command->add_flag("--bids", arguments->bids, "A BIDS tree with preprocessed derivatives instead");
  command->add_option("--participants", arguments->participants, "Participants of the BIDS tree")
      ->needs(bids)
      ->check(CLI::Range(1, simulation::kMostParticipants))
      ->capture_default_str();
  command->footer(kSimulateExamples);
  command->callback([arguments] { simulate(*arguments); });
}

}  // namespace app
