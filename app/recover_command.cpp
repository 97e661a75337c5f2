// tavmap recover: recovered against planted influence, for simulated data.
#include <fmt/core.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "formats/file_error.h"
#include "formats/map_set.h"
#include "formats/nifti.h"
#include "simulation/recovery.h"

namespace app {
namespace {

struct RecoverArguments {
  std::string maps, truth, labels, condition;
  double q = 0.05;
  bool json = false;
};

constexpr const char* kRecoverExamples = R"(
Example:
  tavmap recover sim/maps/sim_Reference.tav sim/truth.json --labels sim/dseg.nii.gz

A condition is recovered when, at the chosen q,
  - the measure that was planted in a region passes in at least 50 % of its voxels,
    each of the other two in at most 10 %;
  - the difference map is positive on average where the reference leads, negative where
    the region leads;
  - outside all regions no measure passes in more than 1 % of the voxels.

Exit codes: 0 recovered, 1 not recovered, 2 wrong usage or input.)";

formats::ImageHeader headerOf(const formats::MapSet& maps) {
  formats::ImageHeader header;
  header.size = maps.grid();
  header.affine = maps.affine;
  return header;
}

std::vector<simulation::ConditionRecovery> assessAll(const RecoverArguments& arguments) {
  const formats::MapSet maps = formats::loadMapSet(arguments.maps);
  const simulation::Truth truth = simulation::readTruth(arguments.truth);
  const formats::LabelImage labels = formats::readLabelImage(arguments.labels);
  formats::requireSameGrid(headerOf(maps), arguments.maps, labels.header, arguments.labels);
  std::vector<std::string> conditions = simulation::conditionsOf(maps);
  if (!arguments.condition.empty()) conditions = {arguments.condition};
  if (conditions.empty()) throw std::invalid_argument("there is no map whose name ends in \": Ref2Vox\"");
  std::vector<simulation::ConditionRecovery> recoveries;
  for (const std::string& condition : conditions)
    recoveries.push_back(simulation::assess(maps, condition, arguments.q, truth, labels));
  return recoveries;
}

void print(const std::vector<simulation::ConditionRecovery>& recoveries, const RecoverArguments& arguments) {
  if (arguments.json) {
    std::cout << simulation::toJsonText(recoveries, arguments.q);
    return;
  }
  std::cout << "Recovered against planted influence, q = " << arguments.q << ", " << arguments.maps << '\n';
  for (const simulation::ConditionRecovery& recovery : recoveries) std::cout << simulation::toText(recovery);
}

void recover(const RecoverArguments& arguments) {
  std::vector<simulation::ConditionRecovery> recoveries;
  try {
    recoveries = assessAll(arguments);
  } catch (const std::invalid_argument& error) {
    throw UsageError(
        fmt::format("{}: {}. Give the maps of this data set, a condition and a q that they have.",
                    arguments.maps, error.what()));
  }
  print(recoveries, arguments);
  std::cout.flush();
  for (const simulation::ConditionRecovery& recovery : recoveries)
    if (!recovery.recovered())
      throw std::runtime_error(
          fmt::format("condition \"{}\" does not show what was planted", recovery.condition));
}

}  // namespace

void addRecoverCommand(CLI::App& program) {
  CLI::App* command =
      program.add_subcommand("recover", "Compare maps of simulated data with what was planted");
  const auto arguments = std::make_shared<RecoverArguments>();
  command->add_option("maps", arguments->maps, "Map set of the reference region (.tav)")->required();
  command->add_option("truth", arguments->truth, "truth.json of the data set")->required();
  command->add_option("--labels", arguments->labels, "Label image of the regions")->required();
  command->add_option("--condition", arguments->condition, "Only this condition (default: each)");
  command->add_option("--q", arguments->q, "False discovery rate of the thresholds")->capture_default_str();
  command->add_flag("--json", arguments->json, "Print JSON");
  command->footer(kRecoverExamples);
  command->callback([arguments] { recover(*arguments); });
}

}  // namespace app
