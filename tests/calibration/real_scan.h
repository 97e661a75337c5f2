// The real scan of examples/ with references that cannot be related to its voxels.
#ifndef TAVMAP_TESTS_CALIBRATION_REAL_SCAN_H
#define TAVMAP_TESTS_CALIBRATION_REAL_SCAN_H

#include <filesystem>
#include <map>
#include <utility>

#include "tests/calibration/cell_measures.h"

namespace calibration {

// What is made of the mean course of a region of the scan, without mean and line.
enum class Unrelated {
  kShifted,       // in a circle, by 20 volumes at least
  kRandomPhases,  // the same spectrum with random phases
  kRandomSigns    // a model of the course, driven by its residuals with random signs
};

struct ScanRates {
  AnyRates any;
  std::map<std::pair<tav::MapType, std::size_t>, double> worstShare;  // of the brain's voxels
};

// folder: examples/oneback-small. References from so many regions, spread evenly over the atlas.
[[nodiscard]] FamilyWiseRates measureScanFamilyWise(const std::filesystem::path& folder, Unrelated kind,
                                                    int references, unsigned seed, int draws);
[[nodiscard]] PValueRates measureScanPValues(const std::filesystem::path& folder, Unrelated kind,
                                             int references, unsigned seed);
[[nodiscard]] std::vector<ScanRates> measureScan(const std::filesystem::path& folder, Unrelated kind,
                                                 int references, unsigned seed,
                                                 const std::vector<Orders>& orders);

}  // namespace calibration

#endif
