#include "formats/probability_atlas.h"

#include <fmt/core.h>

#include <cmath>
#include <vector>

#include "formats/file_error.h"
#include "formats/nifti_stream.h"

namespace formats {
namespace {

constexpr float kPercent = 100;

void requireProbability(float value, const std::string& path) {
  if (value >= 0 && value <= kPercent) return;
  throw FileError(path, fmt::format("it holds {:g}, which is no probability", value),
                  "Give an image of one volume per label with values from 0 to 1, or 0 to 100 per cent");
}

// The largest value of every voxel, and the volume, from 1, that has it.
struct Largest {
  std::vector<float> values;
  std::vector<std::int32_t> volumes;
  float ofAll = 0;

  explicit Largest(std::size_t voxels) : values(voxels, 0), volumes(voxels, 0) {}
  void add(const std::vector<float>& volume, int number, const std::string& path) {
    for (std::size_t i = 0; i < volume.size(); ++i) {
      if (!std::isfinite(volume[i])) continue;
      requireProbability(volume[i], path);
      if (volume[i] <= values[i]) continue;
      values[i] = volume[i];
      volumes[i] = number;
      ofAll = std::max(ofAll, volume[i]);
    }
  }
};

}  // namespace

MostProbableLabels readMostProbableLabels(const std::string& path, double least) {
  NiftiStream stream(path);
  Largest largest(stream.header().size.voxels());
  std::vector<float> volume(stream.header().size.voxels());
  for (int number = 1; number <= stream.header().volumes; ++number) {
    stream.readValues(volume.data(), volume.size());
    largest.add(volume, number, path);
  }
  stream.finish();
  MostProbableLabels result{
      {stream.header(), std::move(largest.volumes)}, stream.header().volumes, largest.ofAll > 1};
  result.image.header.volumes = 1;
  result.image.header.series = false;
  // In the precision of the values: 0.7 as stored is at least 0.7.
  const float enough = static_cast<float>(least * (result.inPercent ? static_cast<double>(kPercent) : 1));
  for (std::size_t i = 0; i < largest.values.size(); ++i) {
    if (largest.values[i] < enough) result.image.labels[i] = 0;
  }
  return result;
}

}  // namespace formats
