#include "tests/calibration/cell_measures.h"

#include <algorithm>
#include <cmath>

#include "tests/calibration/cell_data.h"
#include "tests/calibration/influence_test.h"

namespace calibration {
namespace {

constexpr double kMapScale = 100;  // of the maps, as requests have it

PowerRates& at(std::vector<PowerRates>& rates, std::size_t i) {
  if (rates.size() <= i) rates.resize(i + 1);
  return rates[i];
}

template <typename Passes>
void addPower(const CellData& data, Passes passes, PowerRates& rates) {
  double truly = 0, all = 0;
  for (std::size_t voxel = 0; voxel < data.voxels().size(); ++voxel) {
    if (!passes(voxel)) continue;
    ++all;
    if (data.isDriven(voxel)) ++truly;
  }
  rates.power.add(truly / static_cast<double>(data.driven()));
  rates.falseShare.add(all == 0 ? 0 : (all - truly) / all);
}

void addMaps(const CellData& data, const FoundMap& map, PowerComparison& comparison) {
  for (std::size_t i = 0; i < map.thresholds.size(); ++i)
    addPower(
        data, [&](std::size_t voxel) { return map.passes(voxel, i); }, at(comparison.maps, i));
}

void addLeastSquares(const CellData& data, const CellSetting& setting, const FoundMap& map,
                     PowerComparison& comparison) {
  auto intervals = setting.intervals;
  if (intervals.empty()) intervals = {{1, setting.volumes}};
  std::vector<double> p;
  for (std::size_t voxel = 0; voxel < data.voxels().size(); ++voxel) {
    const InfluenceTest test =
        testInfluence(data.reference(), data.voxels()[voxel], intervals, setting.order);
    p.push_back(test.p);
    const double difference = std::abs(static_cast<double>(map.values[voxel]) / kMapScale - test.logRatio);
    comparison.largestDifference = std::max(comparison.largestDifference, difference);
  }
  for (std::size_t i = 0; i < map.thresholds.size(); ++i) {
    const std::vector<bool> passing = rejected(p, static_cast<double>(map.thresholds[i].q));
    addPower(
        data, [&](std::size_t voxel) { return passing[voxel]; }, at(comparison.leastSquares, i));
  }
}

}  // namespace

void addAny(const std::vector<FoundMap>& maps, AnyRates& rates) {
  for (const FoundMap& map : maps)
    for (std::size_t i = 0; i < map.thresholds.size(); ++i)
      rates[{map.type, i}].add(map.thresholds[i].anyPasses() ? 1 : 0);
}

std::vector<AnyRates> measureAny(const CellSetting& setting, int sets, unsigned firstSeed,
                                 const std::vector<Orders>& orders,
                                 const std::function<void(tav::RunOptions&)>& change) {
  std::vector<AnyRates> rates(orders.size());
  for (int set = 0; set < sets; ++set) {
    const CellData data(setting, firstSeed + static_cast<unsigned>(set));
    LibraryRun run(data.requestText(), data.folder());
    for (std::size_t i = 0; i < orders.size(); ++i) {
      const bool chosen = orders[i] == Orders::kChosen;
      addAny(run.compute(chosen ? run.orderBy(study::OrderChoice::kBic) : setting.order, change), rates[i]);
    }
  }
  return rates;
}

void addFamilyWise(const std::vector<FoundMap>& maps, FamilyWiseRates& rates) {
  for (const FoundMap& map : maps) {
    rates[map.type].voxels.add(map.anyFamilyWise ? 1 : 0);
    rates[map.type].clusters.add(map.anyCluster ? 1 : 0);
  }
}

FamilyWiseRates measureFamilyWise(const CellSetting& setting, int sets, unsigned firstSeed, int draws) {
  FamilyWiseRates rates;
  for (int set = 0; set < sets; ++set) {
    const CellData data(setting, firstSeed + static_cast<unsigned>(set));
    LibraryRun run(data.requestText(), data.folder());
    addFamilyWise(run.compute(setting.order, [&](tav::RunOptions& options) { options.fweDraws = draws; }),
                  rates);
  }
  return rates;
}

void addPValues(const std::vector<FoundMap>& maps, PValueRates& rates) {
  for (const FoundMap& map : maps) {
    std::size_t voxels = 0;
    std::array<std::size_t, kPLevels.size()> reaching{};
    for (const float minusLog : map.minusLogP) {
      if (std::isnan(minusLog)) continue;
      ++voxels;
      for (std::size_t i = 0; i < kPLevels.size(); ++i)
        if (static_cast<double>(minusLog) >= -std::log10(kPLevels[i])) ++reaching[i];
    }
    for (std::size_t i = 0; i < kPLevels.size(); ++i)
      rates[map.type][i].add(static_cast<double>(reaching[i]) / static_cast<double>(voxels));
  }
}

PValueRates measurePValues(const CellSetting& setting, int sets, unsigned firstSeed) {
  PValueRates rates;
  for (int set = 0; set < sets; ++set) {
    const CellData data(setting, firstSeed + static_cast<unsigned>(set));
    addPValues(LibraryRun(data.requestText(), data.folder())
                   .compute(setting.order, [](tav::RunOptions& options) { options.nullP = true; }),
               rates);
  }
  return rates;
}

PowerComparison comparePower(const CellSetting& setting, int sets, unsigned firstSeed,
                             const std::function<void(tav::RunOptions&)>& change) {
  PowerComparison comparison;
  for (int set = 0; set < sets; ++set) {
    const CellData data(setting, firstSeed + static_cast<unsigned>(set));
    const auto maps = LibraryRun(data.requestText(), data.folder()).compute(setting.order, change);
    addAny(maps, comparison.any);
    const auto map = std::find_if(maps.begin(), maps.end(),
                                  [](const FoundMap& found) { return found.type == tav::REF2VOX; });
    addMaps(data, *map, comparison);
    addLeastSquares(data, setting, *map, comparison);
  }
  return comparison;
}

}  // namespace calibration
