// tavmap info: what is in a file.
#include <iostream>
#include <memory>
#include <string>

#include "app/commands.h"
#include "inspect/describe.h"

namespace app {
namespace {

struct InfoOptions {
  std::string path;
  inspect::DescribeOptions describe;
  bool json = false;
};

void info(const InfoOptions& options) {
  const formats::Json document = inspect::describeFile(options.path, options.describe);
  if (options.json) {
    std::cout << document.dump(2, ' ', false, formats::Json::error_handler_t::replace) << '\n';
  } else {
    std::cout << inspect::toReadableText(document);
  }
}

constexpr const char* kInfoExamples = R"(
Examples:
  tavmap info bold.nii.gz
  tavmap info maps_LH-V1.tav --labels dseg.nii.gz
  tavmap info events.tsv --tr 2000 --json)";

}  // namespace

void addInfoCommand(CLI::App& program) {
  const auto options = std::make_shared<InfoOptions>();
  CLI::App* verb = program.add_subcommand(
      "info", "Say what is in a VTC, NIfTI image, map set, label image, table or VOI list");
  verb->add_option("FILE", options->path, "the file")->required();
  verb->add_option("--labels", options->describe.labelsPath,
                   "label image that names the regions of peaks (.tav)");
  verb->add_option("--table", options->describe.tablePath,
                   "table of the label image, else the one beside it");
  verb->add_option("--tr", options->describe.trMs, "repetition time in ms for joining events")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  verb->add_flag("--json", options->json, "machine-readable output");
  verb->footer(kInfoExamples);
  verb->callback([options] { info(*options); });
}

}  // namespace app
