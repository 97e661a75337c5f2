#include "report/embedded_volumes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "report/encoding.h"
#include "report/html.h"

namespace report {
namespace {

struct Range {
  double low = std::numeric_limits<double>::infinity(), high = -std::numeric_limits<double>::infinity();
};

Range rangeOf(std::span<const float> values) {
  Range range;
  for (const float value : values) {
    if (!std::isfinite(value)) continue;
    range.low = std::min(range.low, static_cast<double>(value));
    range.high = std::max(range.high, static_cast<double>(value));
  }
  return range;
}

void appendCode(std::size_t code, int bits, std::vector<std::uint8_t>& bytes) {
  bytes.push_back(static_cast<std::uint8_t>(code & 255U));
  if (bits == 16) bytes.push_back(static_cast<std::uint8_t>(code >> 8U));
}

CodedValues codedWithin(const Range& range, std::span<const float> values, int bits) {
  CodedValues result;
  result.bits = bits;
  result.bytes.reserve(values.size() * static_cast<std::size_t>(bits) / 8);
  const double steps = bits == 16 ? 65534 : 254;
  if (range.high > range.low) result.step = (range.high - range.low) / steps;
  if (range.high >= range.low) result.offset = range.low - result.step;
  for (const float value : values) {
    const double code = (static_cast<double>(value) - result.offset) / result.step;
    appendCode(std::isfinite(value) ? static_cast<std::size_t>(std::llround(code)) : 0, bits, result.bytes);
  }
  return result;
}

// Bytes of text per voxel of one map, measured on maps of noise with a few large values.
constexpr double kTextOf16Bits = 2.2, kTextOf8Bits = 0.95, kTextOfP = 1.0;
// Of maps of which a share is kept: the places of those voxels, and their values.
constexpr double kTextOfPlaces = 0.08, kTextOfKept = 2.2;
constexpr double kKinds = 4.6;  // the thresholded differences are 0 nearly everywhere

double bytesPerVoxel(const EmbeddingPlan& plan) {
  if (plan.strongestShare < 1) return kKinds * (kTextOfPlaces + kTextOfKept * plan.strongestShare);
  return kKinds * ((plan.bits == 16 ? kTextOf16Bits : kTextOf8Bits) + (plan.withP ? kTextOfP : 0));
}

}  // namespace

std::string volumeElement(const std::string& id, std::span<const std::uint8_t> bytes) {
  return element("script", {{"type", "text/plain"}, {"id", id}}, base64(gzipped(bytes))) + "\n";
}

CodedValues coded(std::span<const float> values, int bits) {
  return codedWithin(rangeOf(values), values, bits);
}

CodedValues codedFromZero(std::span<const float> values, int bits) {
  Range range = rangeOf(values);
  range.low = std::min(range.low, 0.0);
  return codedWithin(range, values, bits);
}

EmbeddingPlan embeddingPlan(std::size_t views, std::size_t voxels, std::size_t limit) {
  constexpr auto kPlans = std::to_array<EmbeddingPlan>({{16, true, 1, true},
                                                        {8, true, 1, true},
                                                        {8, false, 1, true},
                                                        {8, false, 0.1, true},
                                                        {8, false, 0.04, true}});
  const double each = static_cast<double>(views) * static_cast<double>(voxels);
  for (const EmbeddingPlan& plan : kPlans)
    if (each * bytesPerVoxel(plan) <= static_cast<double>(limit)) return plan;
  return {8, false, 1, false};
}

float strongest(std::span<const float> values, double share) {
  std::vector<float> magnitudes;
  for (const float value : values)
    if (std::isfinite(value)) magnitudes.push_back(std::abs(value));
  if (magnitudes.empty()) return 0;
  const auto at = magnitudes.begin() +
                  static_cast<std::ptrdiff_t>((1 - share) * static_cast<double>(magnitudes.size() - 1));
  std::nth_element(magnitudes.begin(), at, magnitudes.end());
  return *at;
}

}  // namespace report
