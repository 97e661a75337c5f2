// tavmap export: the maps of a .tav file as single images with sidecars.
#include <fmt/core.h>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <set>
#include <string>

#include "app/commands.h"
#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/file_kinds.h"
#include "formats/json_file.h"
#include "formats/map_set.h"
#include "formats/map_set_json.h"
#include "formats/nifti_writer.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using formats::Json;
using formats::Map;
using formats::MapSet;

struct ExportOptions {
  std::string in, folder;
  bool quiet = false;
};

// Letters and digits as they are, everything else as one hyphen: "faces: Ref2Vox" -> "faces-Ref2Vox".
std::string fileNamePart(const std::string& text) {
  std::string part;
  for (const char c : text) {
    const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    if (plain) part += c;
    if (!plain && !part.empty() && part.back() != '-') part += '-';
  }
  while (!part.empty() && part.back() == '-') part.pop_back();
  return part.empty() ? "map" : part;
}

std::string freeName(const std::string& stem, std::set<std::string>& taken) {
  std::string name = stem;
  for (int n = 2; !taken.insert(name).second; ++n) name = fmt::format("{}-{}", stem, n);
  return name;
}

Json numberOrNull(float value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

std::string sidecarText(const std::string& source, const MapSet& set, const Map& map) {
  Json json;
  json["Description"] = map.name;
  json["Sources"] = {fs::path(source).filename().string()};
  json["SoftwareVersion"] = set.engineVersion;
  json["Thresholds"] = Json::object();
  for (std::size_t i = 0; i < map.thresholds.size(); ++i) {
    json["Thresholds"][set.thresholdNames[i]] = numberOrNull(map.thresholds[i]);
  }
  json["DisplayRange"] = {numberOrNull(map.lowerThreshold), numberOrNull(map.upperThreshold)};
  json["PositiveColors"] = {formats::colorText(map.positiveColorFrom),
                            formats::colorText(map.positiveColorTo)};
  json["NegativeColors"] = {formats::colorText(map.negativeColorFrom),
                            formats::colorText(map.negativeColorTo)};
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

formats::Image3D imageOf(const MapSet& set, const Map& map) {
  formats::Image3D image;
  image.header.size = set.grid();
  image.header.affine = image.header.qform = set.affine;
  image.header.sformCode = image.header.qformCode = set.spaceCode;
  image.header.description = map.name;
  image.values = map.values;
  return image;
}

void makeFolder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    throw formats::FileError(folder, fmt::format("cannot make the folder ({})", error.message()),
                             "Choose a folder that you may write to", formats::Fault::kSystem);
  }
}

void exportMaps(const ExportOptions& options) {
  const MapSet set = formats::loadMapSet(options.in);
  makeFolder(options.folder);
  std::set<std::string> taken;
  const std::string prefix = fs::path(options.in).stem().string();
  for (const auto& map : set.maps) {
    const std::string name = freeName(fmt::format("{}_{}", prefix, fileNamePart(map.name)), taken);
    const std::string stem = (fs::path(options.folder) / name).string();
    formats::writeImage(stem + ".nii.gz", imageOf(set, map));
    formats::writeTextFile(stem + ".json", sidecarText(options.in, set, map));
    if (!options.quiet) std::cout << stem << ".nii.gz: " << map.name << '\n';
  }
}

}  // namespace

void addExportCommand(CLI::App& program) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App* verb =
      program.add_subcommand("export", "Write every map of a .tav file as NIfTI image with JSON sidecar");
  verb->add_option("FILE", options->in, "map set (.tav)")->required();
  verb->add_option("DIR", options->folder, "folder for the images; made when it is missing")->required();
  verb->add_flag("-q,--quiet", options->quiet, "say nothing but warnings and errors");
  verb->footer("\nExample:\n  tavmap export maps_LH-V1.tav exported/");
  verb->callback([options] { exportMaps(*options); });
}

}  // namespace app
