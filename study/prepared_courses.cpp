#include "study/prepared_courses.h"

#include <fmt/core.h>

#include <utility>

#include "formats/file_error.h"
#include "formats/vtc_export.h"

namespace study {

PreparedCourses::PreparedCourses(const std::filesystem::path& vtc) : file_(vtc) {
  const VTC_Header header = formats::readVtcFileHeader(vtc.string());
  dataOffset_ = header.dataOffset;
  volumes_ = header.nrOfVolumes;
  stream_.open(vtc, std::ios::binary);
}

PreparedCourses::PreparedCourses(std::shared_ptr<const tav::LoadedVtc> vtc)
    : loaded_(std::move(vtc)), volumes_(loaded_->header().nrOfVolumes) {}

std::vector<float> PreparedCourses::read(std::size_t voxel) {
  if (loaded_ != nullptr) {
    const std::size_t first = voxel * static_cast<std::size_t>(volumes_);
    if (loaded_->floats() == nullptr)
      return {loaded_->shorts() + first, loaded_->shorts() + first + volumes_};
    return {loaded_->floats() + first, loaded_->floats() + first + volumes_};
  }
  std::vector<float> course(static_cast<std::size_t>(volumes_));
  const std::size_t bytes = course.size() * sizeof(float);
  stream_.clear();
  stream_.seekg(dataOffset_ + static_cast<std::streamoff>(voxel * bytes));
  if (stream_.read(reinterpret_cast<char*>(course.data()), static_cast<std::streamsize>(bytes)))
    return course;
  throw formats::FileError(file_.string(), fmt::format("the course of voxel {} cannot be read", voxel),
                           "Remove the file and repeat the command", formats::Fault::kSystem);
}

}  // namespace study
