// tavmap convert: NIfTI time series to VTC and back.
#include <fmt/core.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "formats/file_kinds.h"
#include "formats/vtc_export.h"
#include "formats/vtc_import.h"
#include "formats/vtc_sidecar.h"

namespace app {
namespace {

struct ConvertOptions {
  std::string in, out;
  formats::ImportOptions import;
  bool importOptionGiven = false;
  bool quiet = false;
};

void toVtc(const ConvertOptions& options) {
  const formats::ImportReport report = formats::importVtc(options.in, options.out, options.import);
  for (const auto& warning : report.warnings)
    std::cerr << "tavmap: " << options.in << ": " << warning << '\n';
  if (options.quiet) return;
  std::cout << options.out << ": " << toText(report.image.size) << " voxels, " << report.volumes
            << " volumes, TR " << report.trMs << " ms\n"
            << report.voxelsIncluded << " of " << report.image.size.voxels()
            << " voxels exceed the inclusion threshold of " << options.import.threshold << '\n';
  if (report.shift > 0) std::cout << "added " << report.shift << " to every voxel inside the mask\n";
}

void toNifti(const ConvertOptions& options) {
  if (options.importOptionGiven) {
    throw UsageError("--mask, --type, --tr, --threshold and --skip apply only to the conversion into a VTC");
  }
  const bool hasSidecar = formats::readVtcSidecar(options.in).has_value();
  formats::exportVtc(options.in, options.out);
  if (options.quiet) return;
  std::cout << options.out << ": written"
            << (hasSidecar
                    ? ""
                    : fmt::format(" (there is no {}, so its voxels are taken to lie in Talairach space)",
                                  formats::sidecarPathOf(options.in)))
            << '\n';
}

void convert(const ConvertOptions& options) {
  if (formats::isNiftiName(options.in) && formats::isVtcName(options.out)) return toVtc(options);
  if (formats::isVtcName(options.in) && formats::isNiftiName(options.out)) return toNifti(options);
  throw UsageError(fmt::format("convert needs one .vtc and one .nii or .nii.gz file, not {} and {}",
                               options.in, options.out));
}

constexpr const char* kConvertExamples = R"(
Examples:
  tavmap convert bold.nii.gz run1.vtc --mask brain_mask.nii.gz
  tavmap convert bold.nii.gz run1.vtc --type uint16 --tr 2000
  tavmap convert run1.vtc run1.nii.gz

Nothing is resampled: a VTC cell is a voxel of the image. Beside NAME.vtc, NAME.vtc.json keeps the
affine and what was done. With a mask, voxels outside become 0 and those inside are raised by one
constant where needed, so that the inclusion threshold selects exactly the mask; the constant has
no influence on any result, and conversion back to NIfTI takes it off again.)";

}  // namespace

void addConvertCommand(CLI::App& program) {
  const auto options = std::make_shared<ConvertOptions>();
  CLI::App* verb = program.add_subcommand("convert", "Convert a NIfTI time series to VTC, or back");
  verb->add_option("IN", options->in, "NIfTI series (.nii, .nii.gz) or VTC")->required();
  verb->add_option("OUT", options->out, "file to write, of the other kind")->required();
  CLI::Option_group* import = verb->add_option_group("Into a VTC");
  auto& o = options->import;
  import->add_option("--mask", o.maskPath, "image on the same grid; voxels other than 0 are kept");
  const std::map<std::string, formats::VtcType> types{{"float32", formats::VtcType::kFloat32},
                                                      {"uint16", formats::VtcType::kUint16}};
  import->add_option("--type", o.type, "float32 (default) or uint16: half the size, whole numbers only")
      ->transform(CLI::CheckedTransformer(types));
  import->add_option("--tr", o.trMs, "repetition time in milliseconds instead of the header's")
      ->check(CLI::PositiveNumber);
  import->add_option("--threshold", o.threshold, "inclusion threshold of the later run")
      ->capture_default_str();
  import->add_option("--skip", o.skipVolumes, "volumes to leave out at the start")
      ->check(CLI::NonNegativeNumber);
  verb->add_flag("-q,--quiet", options->quiet, "say nothing but warnings and errors");
  verb->footer(kConvertExamples);
  verb->callback([options, import] {
    options->importOptionGiven = import->count_all() > 0;
    convert(*options);
  });
}

}  // namespace app
