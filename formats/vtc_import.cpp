#include "formats/vtc_import.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>

#include "formats/file_error.h"
#include "formats/inclusion.h"
#include "formats/nifti.h"
#include "formats/series_transport.h"
#include "formats/vtc_sidecar.h"

namespace formats {
namespace {

constexpr double kLeastTrMs = 20, kLargestTrMs = 60000;

using MaskFlags = std::vector<std::uint8_t>;

std::string fileNameOf(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

double chooseTr(const ImageHeader& header, const ImportOptions& options, const std::string& path) {
  if (options.trMs > 0) return options.trMs;
  if (header.trMs <= 0) {
    throw FileError(path, "its header gives no repetition time", "Give it in milliseconds with --tr");
  }
  if (header.trMs < kLeastTrMs || header.trMs > kLargestTrMs) {
    throw FileError(path,
                    fmt::format("its header gives an implausible repetition time of {} ms", header.trMs),
                    "Give the right one in milliseconds with --tr");
  }
  return header.trMs;
}

int volumesToTake(const ImageHeader& header, const ImportOptions& options, const std::string& path) {
  const int volumes = header.volumes - options.skipVolumes;
  if (volumes >= 2) return volumes;
  throw FileError(
      path, fmt::format("it has {} volumes, of which {} would be used", header.volumes, std::max(volumes, 0)),
      "Give a series of at least two volumes");
}

MaskFlags readMask(const std::string& maskPath, const ImageHeader& image, const std::string& imagePath) {
  if (maskPath.empty()) return {};
  const Image3D mask = readImage(maskPath);
  requireSameGrid(image, imagePath, mask.header, maskPath);
  MaskFlags flags(mask.values.size());
  std::transform(mask.values.begin(), mask.values.end(), flags.begin(),
                 [](float value) { return static_cast<std::uint8_t>(value > 0 || value < 0); });
  if (std::count(flags.begin(), flags.end(), std::uint8_t{1}) == 0) {
    throw FileError(maskPath, "the mask is empty", "Give a mask with voxels other than 0");
  }
  return flags;
}

std::vector<float> volumeValues(const StoredForm& form, const char* stored, std::size_t voxels) {
  std::vector<float> values(voxels);
  (void)convertRow(form, stored, voxels, values.data());  // floats take any value
  return values;
}

// The first two volumes as stored: the first decides what is included.
std::vector<char> readOpening(NiftiStream& stream) {
  std::vector<char> opening(2 * stream.volumeBytes());
  stream.readStored(opening.data(), opening.size());
  return opening;
}

void reportOpening(const std::vector<char>& opening, const StoredForm& form, const MaskFlags& mask,
                   const ImportOptions& options, ImportReport& report) {
  const std::size_t voxels = report.image.size.voxels();
  const std::vector<float> first = volumeValues(form, opening.data(), voxels);
  const InclusionPlan plan = planInclusion(first, mask, options.threshold, options.type == VtcType::kUint16);
  report.shift = plan.shift;
  report.voxelsInMask = plan.voxelsInMask;
  report.voxelsIncluded = plan.voxelsIncluded;
  report.notFinite = plan.notFinite;
  report.meanChange =
      meanChange(first, volumeValues(form, opening.data() + opening.size() / 2, voxels), mask);
}

std::vector<std::string> warningsOf(const ImportReport& report, const ImportOptions& options) {
  std::vector<std::string> warnings;
  if (report.notFinite > 0) {
    warnings.push_back(std::to_string(report.notFinite) +
                       " voxels have no finite first value and will be left out of every map");
  }
  if (options.maskPath.empty() && report.voxelsIncluded == 0) {
    warnings.push_back(
        "no voxel exceeds the inclusion threshold at the first volume, so every map will be empty: "
        "give a mask with --mask");
  }
  // A float near the threshold has steps of 1e-7 of it: a change of a thousand steps is kept well.
  if (report.shift > 0 && report.meanChange < 1e-4 * (options.threshold + report.shift)) {
    warnings.push_back(
        "its values change so little from volume to volume that adding the constant rounds them: "
        "multiply the image by a large number first");
  }
  return warnings;
}

VtcSidecar sidecarOf(const std::string& imagePath, const ImportOptions& options, const ImportReport& report) {
  VtcSidecar sidecar;
  sidecar.affine = report.image.affine;
  sidecar.spaceCode =
      std::max(report.image.sformCode > 0 ? report.image.sformCode : report.image.qformCode, 1);
  sidecar.source = fileNameOf(imagePath);
  if (!options.maskPath.empty()) sidecar.mask = fileNameOf(options.maskPath);
  sidecar.trMs = report.trMs;
  sidecar.scale = options.scale;
  sidecar.shift = report.shift;
  sidecar.threshold = options.threshold;
  return sidecar;
}

void putName(const std::string& name, VTC_Header& header) {
  const std::size_t length = std::min(name.size(), sizeof header.sourceFileName - 1);
  std::copy_n(name.begin(), length, header.sourceFileName);
}

}  // namespace

ImportReport importVtc(const std::string& imagePath, const std::string& vtcPath,
                       const ImportOptions& options) {
  NiftiStream stream(imagePath);
  const ImageHeader& image = stream.header();
  ImportReport report;
  report.image = image;
  report.volumes = volumesToTake(image, options, imagePath);
  report.trMs = chooseTr(image, options, imagePath);
  VTC_Header header = nativeVtcHeader(vtcPath, image.size, report.volumes, options.type);
  putName(fileNameOf(imagePath), header);
  const MaskFlags mask = readMask(options.maskPath, image, imagePath);

  stream.skip(static_cast<std::size_t>(options.skipVolumes) * stream.volumeBytes());
  StoredForm form{image.dataType, stream.layout().swapped, {image.slope, image.intercept}};
  form.scaling.slope *= options.scale, form.scaling.intercept *= options.scale;
  const std::vector<char> opening = readOpening(stream);
  reportOpening(opening, form, mask, options, report);
  report.warnings = warningsOf(report, options);
  form.scaling.intercept += report.shift;

  AtomicFile sidecar(sidecarPathOf(vtcPath), options.durability);
  sidecar.write(encodeVtcSidecar(sidecarOf(imagePath, options, report)));
  VtcWriter writer(vtcPath, header, static_cast<float>(report.trMs), options.durability);
  const SeriesTransport transport{form, static_cast<std::size_t>(report.volumes), options.type,
                                  options.memoryBytes};
  const bool fits = transportSeries(transport, opening, stream, VoxelRuns(mask, image.size.voxels()), writer);
  if (!fits) {
    throw FileError(imagePath, "some of its values do not fit 16 bits (0 to 65,535)",
                    "Choose --type float32");
  }
  writer.commit();
  sidecar.commit();
  return report;
}

}  // namespace formats
