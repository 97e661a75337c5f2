#include "prepare/value_size.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "formats/nifti.h"
#include "formats/nifti_stream.h"

namespace study {
namespace {

// A constant of about the threshold rounds changes that are less than this share of it visibly.
constexpr double kVisibleRounding = 1e-4;
constexpr double kLarge = 16777216;  // 2^24: beyond, single precision has no fractions
constexpr double kAim = 8;           // times the threshold

struct Opening {
  std::vector<double> first, second;
};

Opening readOpening(const RunPlan& run) {
  formats::NiftiStream stream(run.request.bold.string());
  stream.skip(static_cast<std::size_t>(run.volumes.dropped) * stream.volumeBytes());
  const std::size_t voxels = stream.header().size.voxels();
  Opening opening{std::vector<double>(voxels), std::vector<double>(voxels)};
  stream.readValues(opening.first.data(), voxels);
  stream.readValues(opening.second.data(), voxels);
  return opening;
}

std::vector<bool> included(const RunPlan& run, const Opening& opening, int threshold) {
  std::vector<bool> flags(opening.first.size());
  if (run.request.mask.empty()) {
    for (std::size_t i = 0; i < flags.size(); ++i) flags[i] = opening.first[i] > threshold;
  } else {
    const formats::Image3D mask = formats::readImage(run.request.mask.string());
    for (std::size_t i = 0; i < flags.size(); ++i) flags[i] = mask.values[i] != 0;
  }
  return flags;
}

void add(double first, double second, ValueSize& size) {
  ++size.voxels;
  size.least = std::min(size.least, first);
  size.largest = std::max(size.largest, first);
  size.magnitude += std::abs(first);
  size.change += std::abs(second - first);
}

// Of all runs, as if they were one.
ValueSize together(const std::vector<ValueSize>& runs) {
  ValueSize all{true, 0, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
  for (const ValueSize& run : runs) {
    if (run.voxels == 0) continue;
    all.isMasked = all.isMasked && run.isMasked;
    all.voxels += 1;
    all.least = std::min(all.least, run.least);
    all.largest = std::max(all.largest, run.largest);
    all.magnitude += run.magnitude;
    all.change += run.change;
  }
  all.magnitude /= static_cast<double>(std::max<std::size_t>(all.voxels, 1));
  all.change /= static_cast<double>(std::max<std::size_t>(all.voxels, 1));
  return all;
}

bool isSmall(const ValueSize& size, int threshold, double unit) {
  const bool needsConstant = size.isMasked && size.least <= threshold;
  const bool isAllBelow = size.least > 0 && size.largest <= threshold;
  return needsConstant && (isAllBelow || (size.change > 0 && size.change < kVisibleRounding * 2 * unit));
}

}  // namespace

ValueSize sizeOfValues(const RunPlan& run, int inclusionThreshold) {
  const Opening opening = readOpening(run);
  const std::vector<bool> counts = included(run, opening, inclusionThreshold);
  ValueSize size;
  size.isMasked = !run.request.mask.empty();
  size.least = std::numeric_limits<double>::infinity(), size.largest = -size.least;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] && std::isfinite(opening.first[i]) && std::isfinite(opening.second[i]))
      add(opening.first[i], opening.second[i], size);
  }
  size.magnitude /= static_cast<double>(std::max<std::size_t>(size.voxels, 1));
  size.change /= static_cast<double>(std::max<std::size_t>(size.voxels, 1));
  return size;
}

double commonScale(const std::vector<ValueSize>& runs, int inclusionThreshold) {
  const ValueSize all = together(runs);
  const double unit = std::max(1, inclusionThreshold);
  if (all.voxels == 0 || !(all.magnitude > 0) || !std::isfinite(all.magnitude)) return 1;
  if (!isSmall(all, inclusionThreshold, unit) && all.magnitude <= kLarge) return 1;
  const double scale = std::ldexp(1, -std::ilogb(all.magnitude / (kAim * unit)));
  const bool losesVoxels = !all.isMasked && (scale > 1 || all.least * scale <= inclusionThreshold);
  return losesVoxels ? 1 : scale;
}

void setScale(RunPlan& run, double powerOfTwo) {
  run.scale = powerOfTwo;
  if (powerOfTwo == 1) return;
  const std::string stem = run.vtcName.substr(0, run.vtcName.rfind(".vtc"));
  run.vtcName = fmt::format("{}-e{}.vtc", stem, std::ilogb(powerOfTwo));
}

}  // namespace study
