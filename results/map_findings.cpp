#include "results/map_findings.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace study {
namespace {

bool isCode(std::uint8_t code, StatusCode wanted) {
  return code == static_cast<std::uint8_t>(wanted);
}

formats::ImageHeader gridAlone(formats::ImageHeader header) {
  header.volumes = 1;
  header.series = false;
  header.trMs = 0;
  header.slope = 1;
  header.intercept = 0;
  header.intentCode = 0;
  header.intentName.clear();
  header.extensions.clear();
  return header;
}

}  // namespace

StatusCode statusOf(tav::VoxelStatus status, bool inMask, bool inReference) {
  switch (status) {
    case tav::VoxelStatus::kBelowInclusion:
      return inMask ? StatusCode::kBelowInclusion : StatusCode::kOutsideMask;
    case tav::VoxelStatus::kIllDefined:
      return StatusCode::kIllDefined;
    case tav::VoxelStatus::kNotFinite:
      return StatusCode::kNotFinite;
    case tav::VoxelStatus::kComputed:
      break;
  }
  return inReference ? StatusCode::kInsideReference : StatusCode::kComputed;
}

bool isFinding(float value, float threshold, std::uint8_t code) {
  return !isCode(code, StatusCode::kInsideReference) && value != 0 && std::abs(value) >= threshold;
}

std::size_t passingOutside(const float* values, float threshold, const std::vector<std::uint8_t>& codes) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    if (isFinding(values[i], threshold, codes[i])) ++count;
  }
  return count;
}

std::vector<ThresholdResult> thresholdsOf(const tav::MapOutcome& map, const std::vector<double>& qValues,
                                          const std::vector<std::uint8_t>& codes) {
  std::vector<ThresholdResult> results;
  for (std::size_t i = 0; i < map.thresholds.size(); ++i) {
    const tav::MapThreshold& found = map.thresholds[i];
    ThresholdResult result{qValues[i], std::nullopt, found.nrPassing, 0};
    if (result.voxelsPassing > 0)
      result.outsideReference = passingOutside(map.values, found.threshold, codes);
    if (std::isfinite(found.threshold)) result.threshold = withDigitsOf(found.threshold);
    results.push_back(result);
  }
  return results;
}

std::size_t peakOf(const float* values, const std::vector<std::uint8_t>& codes) {
  std::size_t peak = 0;
  float largest = -1;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const float magnitude = std::abs(values[i]);
    if (isCode(codes[i], StatusCode::kComputed) && magnitude > largest) largest = magnitude, peak = i;
  }
  return peak;
}

std::vector<float> thresholdedMap(const float* values, const std::vector<std::uint8_t>& levels) {
  std::vector<float> map(levels.size(), 0);
  for (std::size_t i = 0; i < levels.size(); ++i)
    if (levels[i] > 0) map[i] = values[i];
  return map;
}

std::vector<float> minusLogP(const tav::MapOutcome& map, const std::vector<std::uint8_t>& codes) {
  std::vector<float> image(codes.size(), std::numeric_limits<float>::quiet_NaN());
  for (std::size_t i = 0; i < codes.size(); ++i) {
    if (!isCode(codes[i], StatusCode::kComputed)) continue;
    image[i] = map.values[i] == 0 ? 0 : -std::log10(map.nullP[i]) + 0.0F;  // no -0
  }
  return image;
}

std::vector<float> zImage(const tav::MapOutcome& map, const std::vector<std::uint8_t>& codes) {
  std::vector<float> image(codes.size(), std::numeric_limits<float>::quiet_NaN());
  for (std::size_t i = 0; i < codes.size(); ++i)
    if (isCode(codes[i], StatusCode::kComputed)) image[i] = map.nullZ[i];
  return image;
}

formats::ImageHeader mapHeader(formats::ImageHeader run) {
  formats::ImageHeader header = gridAlone(std::move(run));
  header.dataType = formats::DataType::kFloat32;
  return header;
}

formats::ImageHeader statusHeader(formats::ImageHeader run) {
  formats::ImageHeader header = gridAlone(std::move(run));
  header.dataType = formats::DataType::kUint8;
  header.intentCode = formats::kLabelIntent;
  return header;
}

double withDigitsOf(float value) {
  char text[32];
  *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
  return std::strtod(text, nullptr);
}

}  // namespace study
