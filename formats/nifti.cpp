#include "formats/nifti.h"

#include <fmt/core.h>

#include <cmath>
#include <limits>

#include "formats/file_error.h"
#include "formats/nifti_stream.h"

namespace formats {
namespace {

void requireOneVolume(const ImageHeader& header, const std::string& path) {
  if (header.volumes == 1) return;
  throw FileError(path, fmt::format("it is a series of {} volumes where one is expected", header.volumes),
                  "Give an image of one volume");
}

// Whole numbers, whatever type or scaling they are stored with.
std::int32_t toLabel(double value, const std::string& path) {
  constexpr double kLargest = std::numeric_limits<std::int32_t>::max();
  if (!(value >= -kLargest && value <= kLargest) || std::abs(value - std::nearbyint(value)) > 1e-3) {
    throw FileError(
        path, fmt::format("it holds {:g}, which is no whole number, so it is no label image", value),
        "Give a label image (*_dseg.nii.gz); make one of a probability map by a threshold, or set "
        "'probability' in the [[reference]] of a request");
  }
  return static_cast<std::int32_t>(std::nearbyint(value));
}

}  // namespace

ImageHeader readImageHeader(const std::string& path) {
  return NiftiStream(path).header();
}

Image3D readImage(const std::string& path) {
  requireOneVolume(readImageHeader(path), path);
  return readVolume(path, 0);
}

Image3D readVolume(const std::string& path, int volume) {
  NiftiStream stream(path);
  if (volume < 0 || volume >= stream.header().volumes) {
    throw FileError(path, "it has no volume " + std::to_string(volume), "Count volumes from 0");
  }
  stream.skip(static_cast<std::size_t>(volume) * stream.volumeBytes());
  Image3D image{stream.header(), std::vector<float>(stream.header().size.voxels())};
  stream.readValues(image.values.data(), image.values.size());
  if (volume + 1 == stream.header().volumes) stream.finish();
  image.header.volumes = 1;
  image.header.series = false;
  return image;
}

LabelImage readLabelImage(const std::string& path) {
  NiftiStream stream(path);
  requireOneVolume(stream.header(), path);
  std::vector<double> values(stream.header().size.voxels());
  stream.readValues(values.data(), values.size());
  stream.finish();
  LabelImage image{stream.header(), std::vector<std::int32_t>(values.size())};
  for (std::size_t i = 0; i < values.size(); ++i) image.labels[i] = toLabel(values[i], path);
  return image;
}

}  // namespace formats
