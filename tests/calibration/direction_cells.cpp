#include "tests/calibration/direction_cells.h"

#include <fmt/core.h>

#include "direction/control.h"
#include "tests/calibration/noise_kinds.h"

namespace calibration {
namespace {

constexpr double kDelaySeconds = 2, kMemory = 0.5;

std::vector<float> floatsOf(const Course& course) {
  return {course.begin(), course.end()};
}

Course drivenBy(const Course& signal) {
  Course response(signal.size(), 0.0);
  for (std::size_t t = 1; t < signal.size(); ++t) response[t] = kMemory * response[t - 1] + signal[t - 1];
  standardise(response);
  return response;
}

}  // namespace

std::vector<DirectionCell> directionCells() {
  struct Case {
    Relation relation;
    double referenceSnr, voxelSnr;
  };
  constexpr Case kCases[] = {{Relation::kSameMoment, 5, 0.5}, {Relation::kSameMoment, 0.5, 5},
                             {Relation::kSameMoment, 1, 1},   {Relation::kInfluence, 5, 0.5},
                             {Relation::kDelay, 5, 0.5},      {Relation::kDelay, 1, 1}};
  std::vector<DirectionCell> cells;
  for (const Case& of : kCases)
    for (const auto& [volumes, tr] : {std::pair(300, 2.0), {1200, 0.7}})
      for (const int order : {1, 4})
        cells.push_back({of.relation, volumes, tr, of.referenceSnr, of.voxelSnr, order});
  return cells;
}

std::string nameOf(const DirectionCell& cell) {
  const char* const names[] = {"same moment", "2 s late", "driven"};
  return names[static_cast<int>(cell.relation)];
}

DirectionRates measureDirection(const DirectionCell& cell, int pairs, unsigned seed) {
  Generator generator(seed);
  simo::RandomStream random(seed);
  const auto draw = delayedSignals(static_cast<std::size_t>(cell.volumes), cell.trSeconds,
                                   cell.relation == Relation::kDelay ? kDelaySeconds : 0);
  const std::vector<direction::Interval> whole = {{0, cell.volumes}};
  direction::Control control(cell.order, {cell.volumes});
  DirectionRates rates;
  for (int pair = 0; pair < pairs; ++pair) {
    DelayedSignal signal = draw(generator);
    if (cell.relation == Relation::kInfluence) signal.second = drivenBy(signal.first);
    addNoise(1 / cell.referenceSnr, signal.first, generator);
    addNoise(1 / cell.voxelSnr, signal.second, generator);
    const std::vector<float> reference = floatsOf(signal.first), voxel = floatsOf(signal.second);
    const direction::Verdict verdict = control.judge({{reference, voxel, &whole}}, random).value();
    rates.positive.add(verdict.dtav > 0 ? 1 : 0);
    rates.referenceLeads.add(verdict.isSupported() && verdict.dtav > 0 ? 1 : 0);
    rates.voxelLeads.add(verdict.isSupported() && verdict.dtav < 0 ? 1 : 0);
  }
  return rates;
}

}  // namespace calibration
