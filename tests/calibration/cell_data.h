// One data set of a cell: a run as NIfTI file and confound table, with the request for its maps.
#ifndef TAVMAP_TESTS_CALIBRATION_CELL_DATA_H
#define TAVMAP_TESTS_CALIBRATION_CELL_DATA_H

#include <filesystem>
#include <string>
#include <vector>

#include "tests/calibration/cell_setting.h"
#include "tests/support/scratch.h"

namespace calibration {

class CellData {
 public:
  // Draws the courses and writes run.nii and, when there are any, confounds.tsv to a temporary folder, which
  // goes with the object. Equal settings and seeds give equal files.
  CellData(const CellSetting& setting, unsigned seed);

  [[nodiscard]] std::filesystem::path folder() const { return scratch_.folder(); }
  // With the defaults of requests in all that the setting does not ask for.
  [[nodiscard]] std::string requestText() const;
  // As written, before any preparation; voxels x fastest.
  [[nodiscard]] const Course& reference() const { return reference_; }
  [[nodiscard]] const std::vector<Course>& voxels() const { return voxels_; }
  [[nodiscard]] bool isDriven(std::size_t voxel) const { return voxel < driven_; }
  [[nodiscard]] std::size_t driven() const { return driven_; }

 private:
  void drawCourses(Generator& generator);
  void drive();
  void addConfounds(Generator& generator);
  void addMovement(Generator& generator);
  void write() const;
  void writeConfounds() const;
  // Of the voxels, then of the region's voxels.
  template <typename Change>
  void forEachCourse(Change change);

  CellSetting setting_;
  unsigned seed_;
  std::vector<Course> voxels_, region_;
  Course reference_;
  std::size_t driven_ = 0;
  std::vector<Course> confounds_;
  Course movement_;  // frame-wise displacement, millimetres; empty: none
  Scratch scratch_;
};

}  // namespace calibration

#endif
