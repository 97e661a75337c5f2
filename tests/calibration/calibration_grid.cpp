// Measures one cell of the calibration: many data sets of one kind, and what passed. Lines of tab-separated
// values on standard output. scripts/calibrate runs all cells and writes the tables.
//
// Usage: calibration_grid                   names of all cells, one a line
//        calibration_grid CELL SETS SCAN    SETS data sets of it; SCAN: the folder of the real scan
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "tests/calibration/cell_measures.h"
#include "tests/calibration/cells.h"
#include "tests/calibration/direction_cells.h"
#include "tests/calibration/real_scan.h"

namespace {

using calibration::CellSetting;
using calibration::Mean;
using calibration::Orders;

constexpr double kQs[] = {0.01, 0.05, 0.1};
const std::vector<Orders> kOrders = {Orders::kFixed, Orders::kChosen};
const char* const kOrderNames[] = {"1", "bic"};
// With the default number of whole maps, which take most of the time: few cells, models of order 1.
// And for the p of single voxels.
const char* const kFamilyWiseCells[] = {"ar6", "pink", "haemo-2-300-noise", "jump", "field", "confounds36"};
constexpr int kWholeMaps = 1000;
const std::string kFamilyWise = "fwe-", kPValues = "p-";  // before the name of a cell
const char* const kScanCells[] = {"scan-shifted", "scan-phases", "scan-signs"};
constexpr int kMostScanReferences = 60;

std::vector<std::string> cellNames() {
  std::vector<std::string> names;
  for (const CellSetting& cell : calibration::nullCells()) names.push_back(cell.name);
  for (const CellSetting& cell : calibration::drivenCells()) names.push_back(cell.name);
  for (const std::string& begin : {kFamilyWise, kPValues}) {
    for (const char* name : kFamilyWiseCells) names.push_back(begin + name);
    for (const char* name : kScanCells) names.push_back(begin + name);
  }
  names.emplace_back("direction");
  for (const char* name : kScanCells) names.emplace_back(name);
  return names;
}

const char* nameOf(tav::MapType type) {
  return tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)];
}

void printNull(const CellSetting& cell, int sets, unsigned seed) {
  const auto rates = calibration::measureAny(cell, sets, seed, kOrders);
  for (std::size_t order = 0; order < rates.size(); ++order)
    for (const auto& [what, rate] : rates[order])
      std::printf("%s\t%s\t%s\t%d\t%g\t%s\t%s\t%g\t%d\t%.6f\n", cell.isUnrelated ? "null" : "artefact",
                  cell.name.c_str(), cell.words.c_str(), cell.volumes, cell.trSeconds, kOrderNames[order],
                  nameOf(what.first), kQs[what.second], sets, rate.mean());
}

void printPower(const CellSetting& cell, int sets, const char* method, std::size_t q,
                const calibration::PowerRates& rates, double any) {
  std::printf("power\t%s\t%s\t%d\t%s\t%g\t%d\t%.6f\t%.6f\t%.6f\t%.6f\t%.6f\n", cell.name.c_str(),
              cell.words.c_str(), cell.order, method, kQs[q], sets, rates.power.mean(),
              rates.power.standardError(), rates.falseShare.mean(), rates.falseShare.standardError(), any);
}

void printDriven(const CellSetting& cell, int sets, unsigned seed) {
  const auto found = calibration::comparePower(cell, sets, seed);
  for (std::size_t q = 0; q < found.maps.size(); ++q) {
    printPower(cell, sets, "maps", q, found.maps[q], found.any.at({tav::VOX2REF, q}).mean());
    printPower(cell, sets, "F", q, found.leastSquares[q], 0);
  }
}

void printDirection(int pairs, unsigned seed) {
  for (const auto& cell : calibration::directionCells()) {
    const auto rates = calibration::measureDirection(cell, pairs, seed++);
    std::printf("direction\t%s\t%d\t%g\t%g\t%g\t%d\t%d\t%.6f\t%.6f\t%.6f\n", nameOf(cell).c_str(),
                cell.volumes, cell.trSeconds, cell.referenceSnr, cell.voxelSnr, cell.order, pairs,
                rates.referenceLeads.mean(), rates.voxelLeads.mean(), rates.positive.mean());
  }
}

void printScan(std::size_t kind, int references, unsigned seed, const std::string& folder) {
  const auto all =
      calibration::measureScan(folder, static_cast<calibration::Unrelated>(kind), references, seed, kOrders);
  for (std::size_t order = 0; order < all.size(); ++order)
    for (const auto& [what, rate] : all[order].any)
      std::printf("scan\t%s\t%s\t%s\t%g\t%d\t%.6f\t%.6f\n", kScanCells[kind], kOrderNames[order],
                  nameOf(what.first), kQs[what.second], references, rate.mean(),
                  all[order].worstShare.at(what));
}

// By the name (Fowler, Noll and Vo's hash), so that a cell's data do not depend on which others there are.
unsigned firstSeedOf(const std::string& name) {
  unsigned hash = 2166136261U;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return hash >> 2U;
}

struct Whose {
  std::string cell, words;  // no words: the real scan
  int volumes = 0;
  double trSeconds = 0;
  int sets = 0;
};

void print(const Whose& whose, const calibration::FamilyWiseRates& rates) {
  for (const auto& [type, rate] : rates)
    std::printf("family\t%s\t%s\t%d\t%g\t%s\t%d\t%.6f\t%.6f\n", whose.cell.c_str(), whose.words.c_str(),
                whose.volumes, whose.trSeconds, nameOf(type), whose.sets, rate.voxels.mean(),
                rate.clusters.mean());
}

void print(const Whose& whose, const calibration::PValueRates& rates) {
  for (const auto& [type, rate] : rates)
    for (std::size_t i = 0; i < rate.size(); ++i)
      std::printf("p\t%s\t%s\t%d\t%g\t%s\t%g\t%d\t%.6f\t%.6f\n", whose.cell.c_str(), whose.words.c_str(),
                  whose.volumes, whose.trSeconds, nameOf(type), calibration::kPLevels[i], whose.sets,
                  rate[i].mean(), rate[i].standardError());
}

// One of the two measurements of null data and of the real scan. False when there is no such cell.
template <typename OfNull, typename OfScan>
bool printMeasured(const std::string& cell, int sets, OfNull ofNull, OfScan ofScan) {
  for (const CellSetting& setting : calibration::nullCells()) {
    if (setting.name != cell) continue;
    print({cell, setting.words, setting.volumes, setting.trSeconds, sets}, ofNull(setting));
    return true;
  }
  for (std::size_t kind = 0; kind < std::size(kScanCells); ++kind) {
    if (cell != kScanCells[kind]) continue;
    const int references = std::min(sets, kMostScanReferences);
    print({cell, "", 0, 0, references}, ofScan(static_cast<calibration::Unrelated>(kind), references));
    return true;
  }
  return false;
}

bool printFamilyWise(const std::string& cell, int sets, unsigned seed, const std::string& scan) {
  return printMeasured(
      cell, sets,
      [&](const CellSetting& setting) { return measureFamilyWise(setting, sets, seed, kWholeMaps); },
      [&](calibration::Unrelated kind, int references) {
        return calibration::measureScanFamilyWise(scan, kind, references, seed, kWholeMaps);
      });
}

bool printPValues(const std::string& cell, int sets, unsigned seed, const std::string& scan) {
  return printMeasured(
      cell, sets, [&](const CellSetting& setting) { return measurePValues(setting, sets, seed); },
      [&](calibration::Unrelated kind, int references) {
        return calibration::measureScanPValues(scan, kind, references, seed);
      });
}

bool printCell(const std::string& name, int sets, const std::string& scanFolder) {
  const unsigned seed = firstSeedOf(name);
  for (const CellSetting& cell : calibration::nullCells())
    if (cell.name == name) return printNull(cell, sets, seed), true;
  for (const CellSetting& cell : calibration::drivenCells())
    if (cell.name == name) return printDriven(cell, sets, seed), true;
  if (name.starts_with(kFamilyWise))
    return printFamilyWise(name.substr(kFamilyWise.size()), sets, seed, scanFolder);
  if (name.starts_with(kPValues)) return printPValues(name.substr(kPValues.size()), sets, seed, scanFolder);
  if (name == "direction") return printDirection(sets, seed), true;
  for (std::size_t kind = 0; kind < std::size(kScanCells); ++kind)
    if (name == kScanCells[kind])
      return printScan(kind, std::min(sets, kMostScanReferences), seed, scanFolder), true;
  return false;
}

int listCells() {
  for (const std::string& name : cellNames()) std::printf("%s\n", name.c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) return listCells();
  const int sets = argc == 4 ? std::atoi(argv[2]) : 0;
  try {
    if (sets >= 2 && printCell(argv[1], sets, argv[3])) return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
    return 1;
  }
  std::fprintf(stderr,
               "usage: %s [CELL SETS SCAN], with at least 2 data sets; without any, the cells' names\n",
               argv[0]);
  return 2;
}
