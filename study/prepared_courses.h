// The courses of single voxels out of a prepared run.
#ifndef TAVMAP_STUDY_PREPARED_COURSES_H
#define TAVMAP_STUDY_PREPARED_COURSES_H

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <vector>

namespace study {

class PreparedCourses {
 public:
  // vtc: as prepareRun() makes it, of floats. Throws formats::FileError.
  explicit PreparedCourses(const std::filesystem::path& vtc);

  [[nodiscard]] int volumes() const { return volumes_; }
  // The values of one voxel at all volumes. voxel: (k * ny + j) * nx + i. Throws formats::FileError.
  [[nodiscard]] std::vector<float> read(std::size_t voxel);

 private:
  std::filesystem::path file_;
  std::ifstream stream_;
  std::streamoff dataOffset_;
  int volumes_;
};

}  // namespace study

#endif
