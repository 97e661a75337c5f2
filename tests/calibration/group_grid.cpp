// Measures one cell of the calibration of group tests. Lines of tab-separated values on standard output.
// scripts/calibrate-groups runs all cells and writes the tables.
//
// Usage: group_grid              names of all cells, one a line
//        group_grid CELL SETS    SETS data sets of it
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "tests/calibration/calibrated_groups.h"
#include "tests/calibration/group_measures.h"

namespace {

using calibration::GroupCell;

// By the name (Fowler, Noll and Vo's hash), so that a cell's data do not depend on which others there are.
unsigned firstSeedOf(const std::string& name) {
  unsigned hash = 2166136261U;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return hash >> 2U;
}

void print(const char* kind, const GroupCell& cell, int sets, const calibration::GroupRates& rates) {
  for (const auto& [what, rate] : rates)
    std::printf("%s\t%s\t%s\t%d\t%d\t%d\t%s\t%s\t%d\t%.6f\t%.6f\n", kind, cell.name.c_str(),
                cell.words.c_str(), cell.rows, cell.shuffles, cell.isFailure ? 1 : 0, what.first.c_str(),
                what.second.c_str(), sets, rate.mean(), rate.standardError());
}

calibration::GroupRates doubtsOf(const GroupCell& cell, int sets, unsigned seed) {
  return {{{"doubted", "both"}, measureDoubts(cell, sets, seed)}};
}

bool printCell(const std::string& name, int sets) {
  const unsigned seed = firstSeedOf(name);
  for (const GroupCell& cell : calibration::nullGroups())
    if (cell.name == name) return print("null", cell, sets, measureNullGroups(cell, sets, seed)), true;
  for (const GroupCell& cell : calibration::plantedGroups())
    if (cell.name == name) return print("power", cell, sets, measureGroupPower(cell, sets, seed)), true;
  for (const GroupCell& cell : calibration::symmetryGroups())
    if (cell.name == name) return print("symmetry", cell, sets, doubtsOf(cell, sets, seed)), true;
  return false;
}

int listCells() {
  for (const auto& cells :
       {calibration::nullGroups(), calibration::plantedGroups(), calibration::symmetryGroups()})
    for (const GroupCell& cell : cells) std::printf("%s\n", cell.name.c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) return listCells();
  const int sets = argc == 3 ? std::atoi(argv[2]) : 0;
  try {
    if (sets >= 2 && printCell(argv[1], sets)) return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
    return 1;
  }
  std::fprintf(stderr, "usage: %s [CELL SETS], with at least 2 data sets; without any, the cells' names\n",
               argv[0]);
  return 2;
}
