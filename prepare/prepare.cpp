#include "prepare/prepare.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

#include "formats/atomic_file.h"
#include "formats/claimed_folder.h"
#include "formats/file_error.h"
#include "formats/vtc_export.h"
#include "formats/vtc_import.h"
#include "formats/vtc_sidecar.h"
#include "prepare/course_filter.h"
#include "request/problem.h"

namespace study {
namespace {

namespace fs = std::filesystem;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using Stream = std::unique_ptr<std::FILE, CloseFile>;

// One pass over a VTC, slice by slice, with every included voxel's course filtered.
class FilterPass {
 public:
  FilterPass(const fs::path& from, int inclusionThreshold)
      : path_(from.string()),
        header_(formats::readVtcFileHeader(path_)),
        stream_(std::fopen(path_.c_str(), "rb")),
        threshold_(static_cast<float>(inclusionThreshold)) {
    if (stream_ == nullptr) fail();
    headerBytes_.resize(static_cast<std::size_t>(header_.dataOffset));
    read(headerBytes_.data(), headerBytes_.size());
  }

  // Writes the filtered copy. A voxel is included when its first value exceeds the threshold.
  // `raise` is added to included voxels. Returns the smallest first value that an included voxel
  // has afterwards.
  float run(CourseFilter& filter, float raise, const fs::path& to,
            const std::function<void(double)>& progress) {
    formats::AtomicFile out(to.string(), formats::Durability::kCached);
    out.write(headerBytes_.data(), headerBytes_.size());
    std::fseek(stream_.get(), header_.dataOffset, SEEK_SET);
    smallest_ = INFINITY;
    std::vector<float> row(rowVoxels() * volumes());
    for (int r = 0; r < rows(); ++r) {
      read(row.data(), row.size() * sizeof(float));
      for (std::size_t x = 0; x < rowVoxels(); ++x) filterVoxel(row.data() + x * volumes(), filter, raise);
      out.write(row.data(), row.size() * sizeof(float));
      if (r % header_.yEnd == 0) progress(static_cast<double>(r) / rows());
    }
    out.commit();
    return smallest_;
  }

 private:
  std::size_t volumes() const { return static_cast<std::size_t>(header_.nrOfVolumes); }
  std::size_t rowVoxels() const { return static_cast<std::size_t>(header_.xEnd); }
  int rows() const { return header_.yEnd * header_.zEnd; }

  void filterVoxel(float* course, CourseFilter& filter, float raise) {
    if (!(course[0] > threshold_)) return;
    filter.apply(course);
    for (std::size_t v = 0; v < volumes(); ++v) course[v] += raise;
    smallest_ = std::min(smallest_, course[0]);
  }

  void read(void* to, std::size_t bytes) {
    if (std::fread(to, 1, bytes, stream_.get()) != bytes) fail();
  }
  [[noreturn]] void fail() const {
    throw formats::FileError(path_, "cannot be read back", "Check the work folder's disk",
                             formats::Fault::kSystem);
  }

  std::string path_;
  VTC_Header header_;
  Stream stream_;
  float threshold_;
  float smallest_ = 0;
  std::vector<char> headerBytes_;
};

// The constant that lifts the lowest included voxel above the threshold with room for rounding.
float raiseFor(float smallest, int threshold) {
  const float least = static_cast<float>(threshold) + 1;
  return smallest >= least || !std::isfinite(smallest) ? 0 : std::ceil(least - smallest);
}

void filterInto(const RunPlan& run, const fs::path& imported, const fs::path& target, int threshold,
                const std::function<void(double)>& progress) {
  const int volumes = run.volumes.volumes - run.volumes.dropped;
  const std::vector<bool> kept(run.kept.begin() + run.volumes.dropped, run.kept.end());
  CourseFilter filter(volumes, 0, run.confounds, kept);
  FilterPass pass(imported, threshold);
  const float raise = raiseFor(pass.run(filter, 0, target, progress), threshold);
  formats::VtcSidecar sidecar = formats::readVtcSidecar(imported.string()).value();
  if (raise != 0) {
    pass.run(filter, raise, target, progress);
    sidecar.shift += static_cast<double>(raise);
  }
  formats::writeVtcSidecar(target.string(), sidecar);
}

formats::ImportReport importInto(const RunPlan& run, const fs::path& target, int threshold) {
  formats::ImportOptions options;
  options.maskPath = run.request.mask.string();
  options.trMs = run.volumes.trSeconds * 1000;
  options.threshold = threshold;
  options.skipVolumes = run.volumes.dropped;
  options.scale = run.scale;
  options.durability = formats::Durability::kCached;
  return formats::importVtc(run.request.bold.string(), target.string(), options);
}

void requireVoxels(const RunPlan& run, const formats::ImportReport& report, int threshold) {
  if (report.voxelsIncluded > 0) return;
  throw InputError(fmt::format("run '{}': no voxel of {}{}", run.request.name, run.request.bold.string(),
                               run.request.mask.empty()
                                   ? fmt::format(" exceeds the inclusion threshold of {} at its first "
                                                 "volume; give a mask, or lower 'inclusion_threshold'",
                                                 threshold)
                                   : " lies inside the mask " + run.request.mask.string()));
}

// The sidecar goes last: with it the run counts as prepared.
void moveTo(const fs::path& target, const fs::path& imported) {
  fs::rename(imported, target);
  fs::rename(formats::sidecarPathOf(imported.string()), formats::sidecarPathOf(target.string()));
}

bool needsFilter(const RunPlan& run) {
  const auto first = run.kept.begin() + run.volumes.dropped;
  return !run.confounds.empty() || std::find(first, run.kept.end(), false) != run.kept.end();
}

// Whether the file has the bytes that its header promises.
bool isWhole(const fs::path& vtc) {
  try {
    const VTC_Header header = formats::readVtcFileHeader(vtc.string());
    const auto values = static_cast<std::uintmax_t>(header.xEnd) * static_cast<std::uintmax_t>(header.yEnd) *
                        static_cast<std::uintmax_t>(header.zEnd) *
                        static_cast<std::uintmax_t>(header.nrOfVolumes);
    return fs::file_size(vtc) == static_cast<std::uintmax_t>(header.dataOffset) + values * sizeof(float);
  } catch (const formats::FileError&) {
    return false;
  }
}

}  // namespace

// The sidecar is written after the data.
bool isPrepared(const RunPlan& run, const fs::path& workFolder) {
  const fs::path vtc = workFolder / run.vtcName;
  return fs::exists(vtc) && fs::exists(formats::sidecarPathOf(vtc.string())) && isWhole(vtc);
}

void prepareRun(const RunPlan& run, const fs::path& workFolder, int inclusionThreshold,
                const std::function<void(double)>& progress) {
  const fs::path target = workFolder / run.vtcName;
  const formats::ClaimedFolder temporary = formats::ClaimedFolder::anew(workFolder, "import");
  const fs::path imported = temporary.path() / run.vtcName;
  requireVoxels(run, importInto(run, imported, inclusionThreshold), inclusionThreshold);
  if (!needsFilter(run)) return moveTo(target, imported);
  progress(0.5);
  filterInto(run, imported, target, inclusionThreshold, [&](double share) { progress(0.5 + share / 2); });
}

}  // namespace study
