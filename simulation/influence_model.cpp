#include "simulation/influence_model.h"

#include <array>
#include <cmath>

namespace simulation {
namespace {

struct KindName {
  Kind kind;
  const char* name;
};
constexpr std::array<KindName, 5> kKindNames = {{{Kind::kReference, "reference"},
                                                 {Kind::kDriven, "driven"},
                                                 {Kind::kDriving, "driving"},
                                                 {Kind::kInstantaneous, "instantaneous"},
                                                 {Kind::kUnrelated, "unrelated"}}};

using Square = std::array<std::array<double, 2>, 2>;  // [reference, voxel] x [reference, voxel]

struct PairProcess {
  Square a{}, sigma{};
};

// The variance of the mean of `voxels` innovations of one region.
double varianceOfMean(const RegionModel& region, std::size_t voxels) {
  const double own = region.share * region.share;
  const double rest = region.coherence + (1 - region.coherence) / static_cast<double>(voxels);
  return own + (1 - own) * rest;
}

// The reference's innovation given the past of everything but the driving regions.
double referenceVariance(const InfluenceModel& model, const std::vector<std::size_t>& voxels) {
  double variance = 1;
  for (std::size_t k = 1; k < model.regions.size(); ++k) {
    const double drive = model.regions[k].drive;
    variance += drive * drive * varianceOfMean(model.regions[k], voxels[k]);
  }
  return variance;
}

PairProcess pairProcess(const InfluenceModel& model, const std::vector<std::size_t>& voxels, std::size_t k) {
  const RegionModel& region = model.regions[k];
  // A voxel's covariance with its region's mean equals the mean's variance, and its own variance is
  // 1, so this is also what one voxel's last value tells about the reference.
  const double driveOfVoxel = region.drive * varianceOfMean(region, voxels[k]);
  PairProcess pair;
  pair.a = {{{model.reference().autoregression, driveOfVoxel}, {region.follow, region.autoregression}}};
  const double left = referenceVariance(model, voxels) - driveOfVoxel * driveOfVoxel;
  pair.sigma = {{{left, region.share}, {region.share, 1}}};
  return pair;
}

Square product(const Square& a, const Square& b) {
  Square c{};
  for (std::size_t i = 0; i < 2; ++i)
    for (std::size_t j = 0; j < 2; ++j) c[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j];
  return c;
}

Square transpose(const Square& a) {
  return {{{a[0][0], a[1][0]}, {a[0][1], a[1][1]}}};
}

// The covariance G = a G a' + sigma, summed in doubling steps; the spectral radius of a is below 1.
Square stationaryCovariance(Square a, Square covariance) {
  constexpr int kDoublings = 20;
  for (int step = 0; step < kDoublings; ++step) {
    const Square more = product(product(a, covariance), transpose(a));
    for (std::size_t i = 0; i < 2; ++i)
      for (std::size_t j = 0; j < 2; ++j) covariance[i][j] += more[i][j];
    a = product(a, a);
  }
  return covariance;
}

double errorOfOwnPast(const Square& lag0, const Square& lag1, std::size_t i) {
  return lag0[i][i] - lag1[i][i] * lag1[i][i] / lag0[i][i];
}

RegionModel referenceRegion() {
  return {"Reference", Kind::kReference, 0.5, 0, 0, 0, 0};
}
RegionModel drivenRegion(const char* name, double follow) {
  return {name, Kind::kDriven, 0.3, follow, 0, 0, 0.3};
}
RegionModel drivingRegion(const char* name, double drive) {
  return {name, Kind::kDriving, 0, 0, drive, 0, 0.85};
}
RegionModel instantaneousRegion(const char* name, double share) {
  return {name, Kind::kInstantaneous, 0.4, 0, 0, share, 0.3};
}
RegionModel unrelatedRegion(const char* name, double autoregression) {
  return {name, Kind::kUnrelated, autoregression, 0, 0, 0, 0.3};
}

}  // namespace

const char* nameOf(Kind kind) {
  for (const KindName& entry : kKindNames)
    if (entry.kind == kind) return entry.name;
  return "";
}

bool kindFromName(const std::string& name, Kind& kind) {
  for (const KindName& entry : kKindNames) {
    if (name != entry.name) continue;
    kind = entry.kind;
    return true;
  }
  return false;
}

InfluenceModel plantedModel(double strength) {
  return {{referenceRegion(), drivenRegion("Driven-A", 0.6 * strength),
           drivenRegion("Driven-B", 0.45 * strength), drivingRegion("Driving-A", 0.7 * strength),
           drivingRegion("Driving-B", 0.6 * strength), instantaneousRegion("Instant-A", 0.65 * strength),
           instantaneousRegion("Instant-B", 0.5 * strength), unrelatedRegion("Unrelated-A", 0.5),
           unrelatedRegion("Unrelated-B", 0)}};
}

Measures expectedMeasures(const InfluenceModel& model, const std::vector<std::size_t>& voxels,
                          std::size_t region) {
  const PairProcess pair = pairProcess(model, voxels, region);
  const Square lag0 = stationaryCovariance(pair.a, pair.sigma);
  const Square lag1 = product(pair.a, lag0);
  const Square& s = pair.sigma;
  return {std::log(errorOfOwnPast(lag0, lag1, 1) / s[1][1]),
          std::log(errorOfOwnPast(lag0, lag1, 0) / s[0][0]),
          std::log(s[0][0] * s[1][1] / (s[0][0] * s[1][1] - s[0][1] * s[1][0]))};
}

}  // namespace simulation
