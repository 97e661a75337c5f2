// `tavmap picture`: the maps of a set as PNG mosaics over the anatomy.
#include <iostream>
#include <memory>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "inspect/map_pictures.h"

namespace app {
namespace {

void run(const inspect::PictureOptions& options) {
  if (options.region.empty() != options.labels.empty()) {
    throw UsageError(
        "--labels and --region belong together: the image that names the regions, and one of its names");
  }
  for (const std::string& path : inspect::drawMapSet(options)) std::cout << path << '\n';
}

}  // namespace

void addPictureCommand(CLI::App& program) {
  auto options = std::make_shared<inspect::PictureOptions>();
  CLI::App* verb = program.add_subcommand("picture", "Draw the maps of a set over the anatomy, one PNG each");
  verb->footer(
      "Example:\n  tavmap picture maps_LH-V1.tav pictures --anatomy t1.nii.gz --labels dseg.nii.gz --region "
      "LH-V1");
  verb->add_option("MAPS", options->maps, "Map set (.tav)")->required();
  verb->add_option("FOLDER", options->folder, "Where the pictures go; made if missing")->required();
  verb->add_option("--anatomy", options->anatomy, "Image on the grid of the maps (NIfTI)")->required();
  verb->add_option("--labels", options->labels, "Label image or VOI list that holds the reference region");
  verb->add_option("--table", options->table,
                   "Names of the labels (.tsv); default: the one beside the image");
  verb->add_option("--region", options->region, "Reference region to outline");
  verb->add_option("--q", options->q, "False discovery rate whose threshold is shown")->capture_default_str();
  verb->add_option("--slices", options->slices, "Slices per picture, at most")
      ->check(CLI::Range(1, 200))
      ->capture_default_str();
  verb->callback([options] { run(*options); });
}

}  // namespace app
