#include "planning/sizes.h"

#include <algorithm>

#include "formats/nifti.h"
#include "planning/calibration.h"

namespace planning {
namespace {

constexpr double kMebibytes = 1.048576;
constexpr double kProcess = 12, kWorker = 17, kDrawing = 24;  // what a process has before there are voxels
constexpr double kSeriesInMemory = 160 * kMebibytes;          // see ImportOptions::memoryBytes
constexpr double kCompanions = 32 * kMebibytes;               // see tav/voxel_passes.h
constexpr double kBytesPerVoxel = 285, kBytesOfPlugin = 140;
constexpr double kBytesOfCondition = 86, kBytesOfDraw = 12;
constexpr double kSmallFiles = 0.5, kBytesOfMaps = 94;  // of a reference and condition
constexpr double kFewerFiles = 0.65;                    // of the plug-in's procedure
constexpr double kPageFixed = 0.5, kBytesOfPage = 25;

}  // namespace

Sizes sizesOf(const study::StudyPlan& plan) {
  Sizes sizes;
  sizes.gridVoxels = static_cast<double>(gridVoxels(plan));
  sizes.usedVoxels = usedShare(plan) * sizes.gridVoxels;
  for (const study::RunPlan& run : plan.runs)
    sizes.longestRun = std::max<double>(sizes.longestRun, run.volumes.volumes);
  const formats::ImageHeader header = formats::readImageHeader(plan.request.runs.at(0).bold.string());
  sizes.bytesPerValue = static_cast<double>(formats::bytesOf(header.dataType));
  sizes.references = static_cast<double>(plan.regions.size());
  sizes.conditions = static_cast<double>(plan.conditions.size());
  sizes.isPlugin = plan.request.settings.method == study::Method::kPlugin;
  sizes.draws = sizes.isPlugin ? 1 : plan.request.settings.nullDraws;
  sizes.surrogates = plan.request.settings.surrogates;
  return sizes;
}

double importMegabytes(const Sizes& sizes) {
  const double series = sizes.usedVoxels * sizes.longestRun * sizes.bytesPerValue / kMegabyte;
  return kProcess + std::min(series, kSeriesInMemory);
}

double referenceMegabytes(const Sizes& sizes, double together) {
  const double surrogates = 2 * 4 * sizes.surrogates * sizes.longestRun / kMegabyte;
  const double perVoxel = (sizes.isPlugin ? kBytesOfPlugin : kBytesPerVoxel) +
                          kBytesOfDraw * (sizes.draws - 1) + kBytesOfCondition * (sizes.conditions - 1);
  const double companions = (together - 1) * sizes.usedVoxels * kBytesOfDraw * sizes.draws / kMegabyte;
  return kWorker + surrogates * together + perVoxel * sizes.usedVoxels / kMegabyte +
         std::min(companions, kCompanions);
}

double reportMegabytes(const Sizes& sizes) {
  return kDrawing + (0.3 + 80 * sizes.usedVoxels / kMegabyte) * sizes.references * sizes.conditions +
         260 * sizes.usedVoxels / kMegabyte;
}

double resultMegabytes(const Sizes& sizes) {
  const double fixed = (kSmallFiles + kPageFixed) * (sizes.isPlugin ? kFewerFiles : 1);
  const double each = fixed + (kBytesOfMaps + kBytesOfPage) * sizes.usedVoxels / kMegabyte;
  return each * sizes.conditions;
}

}  // namespace planning
