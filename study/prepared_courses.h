// The courses of single voxels out of a prepared run.
#ifndef TAVMAP_STUDY_PREPARED_COURSES_H
#define TAVMAP_STUDY_PREPARED_COURSES_H

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <vector>

#include "prepare/run_plan.h"
#include "tav/loaded_vtc.h"

namespace study {

class PreparedCourses {
 public:
  // vtc: as prepareRun() makes it, of floats. Throws formats::FileError.
  explicit PreparedCourses(const std::filesystem::path& vtc);
  // Of a run in memory.
  explicit PreparedCourses(std::shared_ptr<const tav::LoadedVtc> vtc);

  [[nodiscard]] int volumes() const { return volumes_; }
  // The values of one voxel at all volumes. voxel: (k * ny + j) * nx + i. Throws formats::FileError.
  [[nodiscard]] std::vector<float> read(std::size_t voxel);

 private:
  std::filesystem::path file_;
  std::shared_ptr<const tav::LoadedVtc> loaded_;  // null: on disk
  std::ifstream stream_;
  std::streamoff dataOffset_ = 0;
  int volumes_;
};

// Opens the courses of a planned run.
using OpenCourses = std::function<PreparedCourses(const RunPlan&)>;

}  // namespace study

#endif
