#include "prepare/anatomy.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "formats/file_error.h"
#include "formats/nifti.h"
#include "formats/nifti_stream.h"
#include "prepare/resample.h"
#include "request/problem.h"

namespace study {
namespace {

constexpr int kMostVolumes = 20;

// The remedy that the reader's messages have is for a result's own inputs.
template <typename Read>
auto readAnatomy(const std::filesystem::path& anatomy, Read read) {
  try {
    return read(anatomy.string());
  } catch (const formats::FileError& error) {
    throw InputError(
        fmt::format("the anatomy {} cannot be read: {}. Give another image, or none: no number depends on it",
                    anatomy.string(), error.reason()));
  }
}

}  // namespace

void requireUsableAnatomy(const std::filesystem::path& anatomy, const RunPlan& run) {
  if (anatomy.empty()) return;
  const formats::ImageHeader header = readAnatomy(anatomy, formats::readImageHeader);
  if (header.volumes != 1)
    throw InputError(
        fmt::format("the anatomy {} has {} volumes; give an image of one", anatomy.string(), header.volumes));
  if (formats::determinant(header.affine) == 0)
    throw InputError(fmt::format("the anatomy {}: its affine cannot be inverted; the header is damaged",
                                 anatomy.string()));
  if (!overlaps(gridOf(header), run.grid))
    throw InputError(fmt::format(
        "the anatomy {} lies nowhere in the grid of {}; give one in the space of the runs, or none",
        anatomy.string(), run.request.bold.string()));
}

std::vector<float> anatomyOnGrid(const std::filesystem::path& anatomy, const Grid& grid) {
  return valuesOnGrid(readAnatomy(anatomy, formats::readImage), grid);
}

VolumeRange firstVolumes(const RunPlan& run) {
  const int first = run.volumes.dropped;
  return {first + 1, std::min(first + kMostVolumes, run.volumes.volumes)};
}

std::vector<float> meanOfFirstVolumes(const RunPlan& run) {
  formats::NiftiStream stream(run.request.bold.string());
  stream.skip(static_cast<std::size_t>(run.volumes.dropped) * stream.volumeBytes());
  std::vector<double> sums(run.grid.size.voxels()), values(sums.size());
  std::vector<int> counts(sums.size());
  for (int v = length(firstVolumes(run)); v > 0; --v) {
    stream.readValues(values.data(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
      if (std::isfinite(values[i])) sums[i] += values[i], ++counts[i];
  }
  std::vector<float> means;
  for (std::size_t i = 0; i < sums.size(); ++i)
    means.push_back(counts[i] == 0 ? 0 : static_cast<float>(sums[i] / counts[i]));
  return means;
}

}  // namespace study
