#include "study/direction_check.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "direction/control.h"
#include "prepare/fingerprint.h"

namespace study {
namespace {

bool isOutsideReference(std::uint8_t code) {
  return code != static_cast<std::uint8_t>(StatusCode::kInsideReference);
}

DirectionCode codeOf(const std::optional<direction::Verdict>& verdict) {
  if (!verdict) return DirectionCode::kNoVerdict;
  if (!verdict->isSupported()) return DirectionCode::kNotSupported;
  return verdict->dtav > 0 ? DirectionCode::kReferenceLeads : DirectionCode::kVoxelLeads;
}

std::vector<int> lengthsOf(const std::vector<ConditionRun>& runs) {
  std::vector<int> lengths;
  for (const ConditionRun& run : runs) lengths.push_back(static_cast<int>(run.reference.size()));
  return lengths;
}

class Tester {
 public:
  Tester(std::vector<ConditionRun>& runs, int order, std::uint32_t seed)
      : runs_(runs), seed_(seed), control_(order, lengthsOf(runs)), courses_(runs.size()) {
    for (const ConditionRun& run : runs) intervals_.push_back(run.intervals<direction::Interval>());
  }

  DirectionCode test(std::size_t voxel) {
    std::vector<direction::RunSeries> series;
    for (std::size_t i = 0; i < runs_.size(); ++i) {
      courses_[i] = runs_[i].voxel(voxel);
      series.push_back({runs_[i].reference, courses_[i], &intervals_[i]});
    }
    simo::RandomStream random(derivedSeed(seed_, fmt::format("direction\n{}", voxel)));
    return codeOf(control_.judge(series, random));
  }

 private:
  std::vector<ConditionRun>& runs_;
  std::uint32_t seed_;
  direction::Control control_;
  std::vector<std::vector<direction::Interval>> intervals_;
  std::vector<std::vector<float>> courses_;  // of one voxel
};

}  // namespace

std::optional<TestedVoxels> voxelsToTest(const std::vector<tav::MapOutcome>& maps,
                                         const std::vector<double>& qValues,
                                         const std::vector<std::uint8_t>& codes) {
  const auto map = std::find_if(maps.begin(), maps.end(),
                                [](const tav::MapOutcome& candidate) { return candidate.type == tav::DTAV; });
  if (map == maps.end() || map->thresholds.empty()) return std::nullopt;
  const tav::MapThreshold& found = map->thresholds.back();
  TestedVoxels tested{qValues.back(), {}};
  for (std::size_t i = 0; found.anyPasses() && i < codes.size(); ++i) {
    const float value = map->values[i];
    if (isOutsideReference(codes[i]) && value != 0 && std::abs(value) >= found.threshold)
      tested.voxels.push_back(i);
  }
  return tested;
}

std::vector<DirectionCode> testDirections(std::vector<ConditionRun>& runs, int order, std::uint32_t seed,
                                          const std::vector<std::size_t>& voxels,
                                          const std::function<void(double)>& progress) {
  constexpr std::size_t kBetweenReports = 50;
  Tester tester(runs, order, seed);
  std::vector<DirectionCode> codes;
  for (const std::size_t voxel : voxels) {
    codes.push_back(tester.test(voxel));
    if (codes.size() % kBetweenReports == 0)
      progress(static_cast<double>(codes.size()) / static_cast<double>(voxels.size()));
  }
  return codes;
}

}  // namespace study
