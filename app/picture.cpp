// `tavmap picture`: maps as PNG mosaics over the anatomy.
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "inspect/map_pictures.h"

namespace app {
namespace {

struct PictureArguments {
  inspect::PictureOptions options;
  std::vector<std::string> mapsAndFolder;
  std::string colours = "readable";
};

void run(PictureArguments arguments) {
  inspect::PictureOptions& options = arguments.options;
  options.folder = arguments.mapsAndFolder.back();
  arguments.mapsAndFolder.pop_back();
  options.maps = std::move(arguments.mapsAndFolder);
  if (arguments.colours == "plugin") options.colours = inspect::MapColours::kStored;
  if (options.region.empty() != options.labels.empty()) {
    throw UsageError(
        "--labels and --region belong together: the image that names the regions, and one of its names");
  }
  for (const std::string& path : inspect::drawMaps(options)) std::cout << path << '\n';
}

constexpr const char* kPictureExamples = R"(
Examples:
  tavmap picture maps_LH-V1.tav pictures --anatomy t1.nii.gz --labels dseg.nii.gz --region LH-V1
  tavmap picture *_stat-effect_statmap.nii.gz pictures --anatomy boldref.nii.gz --q 0.01)";

}  // namespace

void addPictureCommand(CLI::App& program) {
  auto arguments = std::make_shared<PictureArguments>();
  inspect::PictureOptions* options = &arguments->options;
  CLI::App* verb = program.add_subcommand("picture", "Draw maps over the anatomy, one PNG each");
  verb->footer(kPictureExamples);
  verb->add_option(
          "MAPS", arguments->mapsAndFolder,
          "Map sets (.tav), or effect maps that run and bids write (*_statmap.nii.gz; thresholds from "
          "their sidecars); and last the folder where the pictures go, made if missing")
      ->type_name("FOLDER")
      ->expected(-2)  // or more
      ->required();
  verb->add_option("--anatomy", options->anatomy, "Image on the grid of the maps (NIfTI)")->required();
  verb->add_option("--labels", options->labels, "Label image or VOI list that holds the reference region");
  verb->add_option("--table", options->table,
                   "Names of the labels (.tsv); default: the one beside the image");
  verb->add_option("--region", options->region, "Reference region to outline");
  verb->add_option("--q", options->q, "False discovery rate whose threshold is shown")->capture_default_str();
  verb->add_option("--slices", options->slices, "Slices per picture, at most")
      ->check(CLI::Range(1, 200))
      ->capture_default_str();
  verb->add_option(
          "--colours", arguments->colours,
          "readable: from red to yellow, and negative values from blue to light blue, which colour-blind "
          "people tell apart; plugin: those of the plug-in, which a map set (.tav) keeps")
      ->check(CLI::IsMember({"readable", "plugin"}))
      ->capture_default_str();
  verb->callback([arguments] { run(*arguments); });
}

}  // namespace app
