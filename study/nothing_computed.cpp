#include "study/nothing_computed.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "results/results.h"
#include "study/voxel_sample.h"

namespace study {
namespace {

constexpr const char* kBeyondPrecision =
    "values beyond single precision (magnitudes above 3.4e38) or values that are no numbers; repair the "
    "image, or scale it down";

enum class Kind { kVaries, kConstant, kNotFinite };

// Over the volumes of the intervals alone.
Kind kindOf(const std::vector<float>& course, const std::vector<VolumeRange>& ranges) {
  float least = std::numeric_limits<float>::infinity(), largest = -least;
  for (const VolumeRange& range : ranges) {
    for (int v = range.first - 1; v < range.last; ++v) {
      const float value = course[static_cast<std::size_t>(v)];
      if (!std::isfinite(value)) return Kind::kNotFinite;
      least = std::min(least, value), largest = std::max(largest, value);
    }
  }
  return least < largest ? Kind::kVaries : Kind::kConstant;
}

bool isCode(std::uint8_t code, StatusCode wanted) {
  return code == static_cast<std::uint8_t>(wanted);
}

// What all sampled voxels of a run are.
Kind kindOfVoxels(ConditionRun& run, const std::vector<std::size_t>& voxels) {
  std::vector<Kind> kinds;
  for (const std::size_t voxel : voxels) kinds.push_back(kindOf(run.voxel(voxel), run.ranges));
  const auto all = [&](Kind wanted) {
    return std::all_of(kinds.begin(), kinds.end(), [&](Kind kind) { return kind == wanted; });
  };
  return all(Kind::kNotFinite) ? Kind::kNotFinite : all(Kind::kConstant) ? Kind::kConstant : Kind::kVaries;
}

// "run 'a'", or "runs 'a', 'b'": those of this kind.
std::string runsOf(Kind wanted, const std::vector<ConditionRun>& runs, const std::vector<Kind>& kinds) {
  std::string names;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (kinds[i] == wanted) names += fmt::format("{}'{}'", names.empty() ? "" : ", ", runs[i].name);
  }
  return fmt::format("{} {}", std::count(kinds.begin(), kinds.end(), wanted) == 1 ? "run" : "runs", names);
}

// One run that is not finite spoils the sums of all; constant runs alone do not spoil others.
std::string problemOf(const std::string& whose, const std::vector<ConditionRun>& runs,
                      const std::vector<Kind>& kinds) {
  if (std::count(kinds.begin(), kinds.end(), Kind::kNotFinite) > 0)
    return fmt::format("{} {} hold {}", whose, runsOf(Kind::kNotFinite, runs, kinds), kBeyondPrecision);
  if (std::count(kinds.begin(), kinds.end(), Kind::kVaries) > 0) return "";
  return fmt::format(
      "{} {} are constant over its intervals; without change there is no influence to see, "
      "check the image",
      whose, runsOf(Kind::kConstant, runs, kinds));
}

std::string tooShort(int effectiveVolumes, int order) {
  const int coefficients = 2 * order;
  if (effectiveVolumes > 4 * coefficients)
    return "no model of them can be solved; are the voxels copies of the reference or of one another?";
  return fmt::format(
      "the intervals are too short, {} effective volumes for the {} coefficients of each "
      "equation of a model of order {}; give longer intervals or a lower order",
      effectiveVolumes, coefficients, order);
}

}  // namespace

std::string whyNothingIsComputed(std::vector<ConditionRun>& runs, const std::vector<std::uint8_t>& codes,
                                 int effectiveVolumes, int order) {
  std::vector<Kind> kinds;
  for (const ConditionRun& run : runs) kinds.push_back(kindOf(run.reference, run.ranges));
  const std::string ofReference = problemOf("the courses of the reference in", runs, kinds);
  if (!ofReference.empty()) return ofReference;
  const std::vector<std::size_t> sample = sampleOf(codes, {StatusCode::kIllDefined, StatusCode::kNotFinite});
  if (sample.empty()) {
    const bool isAnyInside = std::any_of(codes.begin(), codes.end(), [](std::uint8_t code) {
      return isCode(code, StatusCode::kInsideReference);
    });
    return isAnyInside ? "all voxels that are mapped belong to the reference; give a larger mask"
                       : "no voxel is included in every run; give masks that overlap, or lower "
                         "'inclusion_threshold'";
  }
  kinds.clear();
  for (ConditionRun& run : runs) kinds.push_back(kindOfVoxels(run, sample));
  const std::string ofVoxels = problemOf("the voxels of", runs, kinds);
  return ofVoxels.empty() ? tooShort(effectiveVolumes, order) : ofVoxels;
}

}  // namespace study
