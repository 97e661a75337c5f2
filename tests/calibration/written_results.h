// What a run of a study has written, held against the truth.
#ifndef TAVMAP_TESTS_CALIBRATION_WRITTEN_RESULTS_H
#define TAVMAP_TESTS_CALIBRATION_WRITTEN_RESULTS_H

#include <filesystem>
#include <string>
#include <vector>

namespace calibration {

// What passed in one map at one q.
struct Discoveries {
  std::string condition;
  double q = 0;
  int truly = 0;        // driven voxels that pass
  int falsely = 0;      // voxels that pass and are neither driven nor of the reference
  int inReference = 0;  // voxels of the reference that pass
  int driven = 0;       // voxels driven
  int computed = 0;     // voxels mapped outside the reference
  [[nodiscard]] bool any() const { return truly + falsely > 0; }
  // Among voxels outside the reference.
  [[nodiscard]] double falseShare() const { return shareOf(truly + falsely); }
  // Among all that pass: a voxel of the reference is related to it, and no false discovery.
  [[nodiscard]] double falseShareOfAll() const { return shareOf(truly + falsely + inReference); }
  [[nodiscard]] double power() const { return driven == 0 ? 0.0 : static_cast<double>(truly) / driven; }

 private:
  [[nodiscard]] double shareOf(int all) const { return all == 0 ? 0.0 : static_cast<double>(falsely) / all; }
};

// Reads a reference's record, and the maps and status maps that it names. Thresholds come from the
// record, passing voxels from the images. One entry per condition, map and q, in the record's
// order. driven: one flag per voxel of the grid. Throws std::runtime_error when the images
// contradict the record's counts.
[[nodiscard]] std::vector<Discoveries> readDiscoveries(const std::filesystem::path& record,
                                                       const std::vector<bool>& driven);

}  // namespace calibration

#endif
