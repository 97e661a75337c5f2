#include "inference/group_results.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "inference/false_discovery.h"
#include "inference/level.h"
#include "inference/maxima_p.h"
#include "inference/t_distribution.h"

namespace inference {

namespace {

constexpr double kLevel = 0.05;

// Per place of all; NaN where nothing is tested.
template <typename OfSlot>
std::vector<float> mapOf(const Tested& tested, OfSlot ofSlot) {
  std::vector<float> map(tested.values.places, std::nanf(""));
  const auto& places = tested.places.placeOfSlot;
  for (std::size_t slot = 0; slot < places.size(); ++slot)
    if (places[slot] >= 0) map[static_cast<std::size_t>(places[slot])] = static_cast<float>(ofSlot(slot));
  return map;
}

// What counts of a value.
double counted(const Tested& tested, double value) {
  return tested.options.twoSided ? std::abs(value) : value;
}

template <typename Values>
float largestCounted(const Tested& tested, const Values& values) {
  double largest = 0;
  for (const float value : values) largest = std::max(largest, counted(tested, static_cast<double>(value)));
  return static_cast<float>(largest);
}

template <typename Values>
std::vector<float> pByMaximaOf(const Tested& tested, const NullMaxima& null, const Values& values) {
  return mapOf(tested, [&](std::size_t slot) {
    return pByMaxima(null, counted(tested, static_cast<double>(values[slot])));
  });
}

bool isTailSmooth(const Tested& tested) {
  return tested.options.tail == Tail::kSmooth && !tested.shuffles.isExhaustive() &&
         tested.shuffles.count() <= static_cast<std::size_t>(kFewShuffles);
}

double smallestAtQ(const Tested& tested, const TestResult& result) {
  double smallest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < result.t.size(); ++i)
    if (isWithin(result.qFdr[i], kLevel))
      smallest = std::min(smallest, counted(tested, static_cast<double>(result.t[i])));
  return smallest;
}

void setMaps(const Tested& tested, TestResult& result) {
  const auto shuffles = static_cast<double>(tested.shuffles.count());
  result.effect = mapOf(tested, [&](std::size_t slot) { return tested.places.effect[slot]; });
  result.t = mapOf(tested, [&](std::size_t slot) { return tested.observed.t[slot]; });
  result.z = mapOf(tested, [&](std::size_t slot) { return tested.observed.z[slot]; });
  result.p = mapOf(tested, [&](std::size_t slot) { return (tested.swept.reached[slot] + 1) / shuffles; });
  result.pFwe = pByMaximaOf(tested, result.nullZ, tested.observed.z);
  result.qFdr = adjustedForDiscovery(result.p);
  result.rows = tested.places.rowsOfPlace;
}

void setEnhanced(const Tested& tested, TestResult& result) {
  const auto& enhanced = tested.observed.enhanced;
  result.nullEnhanced =
      nullOfMaxima(tested.swept.enhanced, largestCounted(tested, enhanced), isTailSmooth(tested));
  result.enhanced = mapOf(tested, [&](std::size_t slot) { return enhanced[slot]; });
  result.pEnhanced = pByMaximaOf(tested, result.nullEnhanced, enhanced);
}

Cluster ofPlaces(const Tested& tested, Cluster cluster) {
  const auto placeOf = [&](std::size_t slot) { return tested.places.placeOfSlot[slot]; };
  for (std::int32_t& place : cluster.places) place = placeOf(static_cast<std::size_t>(place));
  std::sort(cluster.places.begin(), cluster.places.end());
  cluster.peak = static_cast<std::size_t>(placeOf(cluster.peak));
  return cluster;
}

void setClusters(const Tested& tested, TestResult& result) {
  const auto& clusters = tested.observed.clusters;
  const double largest = clusters.empty() ? 0 : clusters[0].mass;
  result.nullMass = nullOfMaxima(tested.swept.mass, static_cast<float>(largest), isTailSmooth(tested));
  for (const Cluster& cluster : clusters) {
    result.clusters.push_back(ofPlaces(tested, cluster));
    result.clusters.back().pFwe = pByMaxima(result.nullMass, cluster.mass);
  }
}

}  // namespace

TestResult groupResult(const Tested& tested) {
  TestResult result;
  result.shuffles = tested.shuffles.count();
  result.isExhaustive = tested.shuffles.isExhaustive();
  result.tested = static_cast<std::size_t>(std::count_if(tested.places.placeOfSlot.begin(),
                                                         tested.places.placeOfSlot.end(),
                                                         [](int place) { return place >= 0; }));
  result.freedom = static_cast<int>(tested.model.rows() - tested.model.contrast.size());
  result.nullZ =
      nullOfMaxima(tested.swept.z, largestCounted(tested, tested.observed.z), isTailSmooth(tested));
  setMaps(tested, result);
  if (tested.options.enhance) setEnhanced(tested, result);
  if (tested.options.clusterFormingZ > 0) setClusters(tested, result);
  const double atLevel = valueAtLevel(result.nullZ, kLevel);
  result.tAtFwe05 = tested.options.varianceFwhmMm > 0 ? atLevel : tOfZ(atLevel, result.freedom);
  result.tAtQ05 = smallestAtQ(tested, result);
  if (tested.options.exchange == Exchange::kSignFlips)
    result.symmetry = checkSymmetry(tested.model, tested.values, tested.options.seed);
  else
    result.spread = checkSpread(tested.model, tested.values, tested.options.blocks, tested.options.seed);
  return result;
}

}  // namespace inference
