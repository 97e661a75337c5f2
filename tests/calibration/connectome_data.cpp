#include "tests/calibration/connectome_data.h"

#include <cmath>
#include <random>

#include "tests/calibration/noise_kinds.h"

namespace calibration {
namespace {

using Series = Course;

Series autoregression(double memory, int volumes, Generator& engine) {
  std::normal_distribution<double> noise;
  Series series;
  double value = 0;
  for (int t = -100; t < volumes; ++t) {
    value = memory * value + noise(engine) * std::sqrt(1 - memory * memory);
    if (t >= 0) series.push_back(value);
  }
  return series;
}

Series courseOf(const ConnectomeCell& cell, std::size_t node, Generator& engine) {
  if (cell.kind == NodeKind::kHaemodynamic)
    return calibration::haemodynamic(cell.trSeconds, 0.5)(static_cast<std::size_t>(cell.volumes), engine);
  const double place = static_cast<double>(node) / static_cast<double>(cell.nodes);
  return autoregression(cell.kind == NodeKind::kAlike ? 0.6 : 0.2 + 0.7 * place, cell.volumes, engine);
}

}  // namespace

const std::vector<ConnectomeCell>& connectomeCells() {
  static const std::vector<ConnectomeCell> cells = {
      {"unrelated, AR(1) of .6", NodeKind::kAlike, 200, 2, 20, 1, 1, false},
      {"unrelated, AR(1) of .2 to .9", NodeKind::kUnequal, 200, 2, 20, 1, 1, false},
      {"unrelated, haemodynamic and scanner noise, TR 2 s", NodeKind::kHaemodynamic, 300, 2, 20, 1, 1, false},
      {"unrelated, haemodynamic and scanner noise, TR .7 s", NodeKind::kHaemodynamic, 600, 0.7, 20, 1, 1,
       false},
      {"two halves that share a signal each, AR(1) of .6; pairs across", NodeKind::kAlike, 200, 2, 20, 2, 1,
       false},
      {"two halves that share a signal each, haemodynamic, TR 2 s; pairs across", NodeKind::kHaemodynamic,
       300, 2, 20, 2, 1, false},
      {"unrelated, AR(1) of .6, given all others", NodeKind::kAlike, 400, 2, 20, 1, 1, true},
      {"unrelated, haemodynamic, TR 2 s, given all others", NodeKind::kHaemodynamic, 400, 2, 20, 1, 1, true}};
  return cells;
}

ConnectomeSet makeConnectomeSet(const ConnectomeCell& cell, unsigned set) {
  Generator engine(1000 * set + 17);
  connectome::SeriesRun run;
  run.volumes = cell.volumes;
  run.intervals = {{0, cell.volumes}};
  run.known = {{0, cell.volumes}};
  std::vector<Series> shared;
  for (int half = 0; half < 2; ++half) shared.push_back(courseOf(cell, 0, engine));
  const std::size_t middle = cell.nodes / 2;
  for (std::size_t node = 0; node < cell.nodes; ++node) {
    const Series own = courseOf(cell, node, engine);
    const Series& signal = shared[node < middle ? 0 : 1];
    for (std::size_t t = 0; t < own.size(); ++t)
      run.nodes.push_back(static_cast<float>(own[t] + (cell.halves == 2 ? 1.5 * signal[t] : 0)));
  }
  const bool isHalved = cell.halves == 2;
  return {{cell.nodes, 0, {std::move(run)}},
          [=](std::size_t a, std::size_t b) { return !isHalved || (a < middle) != (b < middle); }};
}

}  // namespace calibration
