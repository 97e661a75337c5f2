#include "live/voxel_look.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>

#include "live/engine.h"
#include "simo/detrend.h"

namespace live {
namespace {

using Series = std::vector<double>;

struct Pair {
  Series reference, voxel;  // of one interval, without mean and line
};

const study::RunPlan& runNamed(const study::StudyPlan& plan, const std::string& name) {
  return *std::find_if(plan.runs.begin(), plan.runs.end(),
                       [&](const study::RunPlan& run) { return run.request.name == name; });
}

RunLook runLook(const LoadedStudy& study, const LiveMaps& maps, const study::StudyPlan& plan,
                const study::PlannedSet& set, std::size_t cell) {
  const study::RunPlan& target = runNamed(plan, set.target);
  RunLook look{
      set.target, target.volumes.trSeconds, maps.courses.at(set.source), study.coursesOf(target).read(cell),
      {},         target.volumes.dropped};
  const std::size_t both = std::min(look.reference.size(), look.voxel.size());
  look.reference.resize(both);
  look.voxel.resize(both);
  for (const study::VolumeRange& range : study::shifted(set.ranges, -target.volumes.dropped))
    look.intervals.emplace_back(range.first - 1, study::length(range));
  return look;
}

Series detrended(const std::vector<float>& values, const std::pair<int, int>& interval) {
  Series series(static_cast<std::size_t>(interval.second));
  // What is left of a series that is only its line is 0, and its models are degenerate.
  static_cast<void>(simo::detrendRow(values.data() + interval.first, interval.second, series.data()));
  return series;
}

std::vector<Pair> pairsOf(const std::vector<RunLook>& runs) {
  std::vector<Pair> pairs;
  for (const RunLook& run : runs)
    for (const auto& interval : run.intervals)
      pairs.push_back({detrended(run.reference, interval), detrended(run.voxel, interval)});
  return pairs;
}

// lag: at least 0; of `earlier` with `later` so many volumes on.
double correlation(const std::vector<Pair>& pairs, int lag, Series Pair::*earlier, Series Pair::*later) {
  double products = 0, a = 0, b = 0;
  for (const Pair& pair : pairs) {
    const Series &x = pair.*earlier, &y = pair.*later;
    for (std::size_t t = static_cast<std::size_t>(lag); t < y.size(); ++t)
      products += x[t - static_cast<std::size_t>(lag)] * y[t];
    for (const double value : x) a += value * value;
    for (const double value : y) b += value * value;
  }
  return a > 0 && b > 0 ? products / std::sqrt(a * b) : 0;
}

std::vector<LaggedCorrelation> laggedOf(const std::vector<Pair>& pairs) {
  std::vector<LaggedCorrelation> lagged;
  for (int lag = -kMostLags; lag <= kMostLags; ++lag) {
    const double r = lag >= 0 ? correlation(pairs, lag, &Pair::reference, &Pair::voxel)
                              : correlation(pairs, -lag, &Pair::voxel, &Pair::reference);
    lagged.push_back({lag, r});
  }
  return lagged;
}

int samplesOf(const std::vector<Pair>& pairs, int order) {
  int samples = 0;
  for (const Pair& pair : pairs) samples += std::max(0, static_cast<int>(pair.voxel.size()) - order);
  return samples;
}

using Column = Series Pair::*;

// A row per sample: lags 1 ... order of each of the columns.
Eigen::MatrixXd pastOf(const std::vector<Pair>& pairs, int order, const std::vector<Column>& columns) {
  Eigen::MatrixXd past(samplesOf(pairs, order), static_cast<Eigen::Index>(columns.size()) * order);
  Eigen::Index row = 0;
  for (const Pair& pair : pairs) {
    for (int t = order; t < static_cast<int>(pair.voxel.size()); ++t, ++row) {
      Eigen::Index at = 0;
      for (const Column column : columns)
        for (int lag = 1; lag <= order; ++lag)
          past(row, at++) = (pair.*column)[static_cast<std::size_t>(t - lag)];
    }
  }
  return past;
}

Eigen::VectorXd presentOf(const std::vector<Pair>& pairs, int order, Column column) {
  Eigen::VectorXd present(samplesOf(pairs, order));
  Eigen::Index row = 0;
  for (const Pair& pair : pairs)
    for (std::size_t t = static_cast<std::size_t>(order); t < (pair.*column).size(); ++t)
      present(row++) = (pair.*column)[t];
  return present;
}

std::optional<FittedModel> fitted(const std::vector<Pair>& pairs, int order, Column column,
                                  const std::vector<Column>& past) {
  const Eigen::MatrixXd design = pastOf(pairs, order, past);
  const Eigen::VectorXd present = presentOf(pairs, order, column);
  const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(design);
  if (design.rows() <= design.cols() || qr.rank() < design.cols()) return std::nullopt;
  const Eigen::VectorXd coefficients = qr.solve(present);
  FittedModel model;
  for (std::size_t i = 0; i < past.size(); ++i) {
    std::vector<double>& of = past[i] == &Pair::reference ? model.onReference : model.onVoxel;
    for (int lag = 0; lag < order; ++lag)
      of.push_back(coefficients(static_cast<Eigen::Index>(i) * order + lag));
  }
  model.errorVariance = (present - design * coefficients).squaredNorm() / static_cast<double>(design.rows());
  return model;
}

}  // namespace

VoxelLook lookAt(const LoadedStudy& study, const LiveMaps& maps, std::size_t cell) {
  const study::StudyPlan plan = planFor(study, maps.ask);
  VoxelLook look;
  for (const study::PlannedSet& set : plan.conditions[0].sets)
    look.runs.push_back(runLook(study, maps, plan, set, cell));
  const std::vector<Pair> pairs = pairsOf(look.runs);
  const Column reference = &Pair::reference, voxel = &Pair::voxel;
  look.lagged = laggedOf(pairs);
  look.samples = samplesOf(pairs, plan.order);
  look.referenceAlone = fitted(pairs, plan.order, reference, {reference});
  look.voxelAlone = fitted(pairs, plan.order, voxel, {voxel});
  look.reference = fitted(pairs, plan.order, reference, {reference, voxel});
  look.voxel = fitted(pairs, plan.order, voxel, {reference, voxel});
  return look;
}

}  // namespace live
