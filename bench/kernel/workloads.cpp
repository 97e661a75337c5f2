#include "bench/kernel/workloads.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>

#include "tests/fakes/vtc_file.h"

namespace bench {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

constexpr double kCoefficient = 0.4;

class VoxelMaker {
 public:
  explicit VoxelMaker(int volumes) : random_(1), reference_(static_cast<std::size_t>(volumes)) {
    double last = 0.0;
    for (double& v : reference_) v = last = 0.5 * last + normal();
  }

  // The first voxels of the data carry the reference itself: they are the reference region.
  std::vector<double> make(int voxel, bool isRegion) {
    const double base = uniform(8000.0, 12000.0), sd = uniform(80.0, 200.0), drift = uniform(-200.0, 200.0);
    const double coupling = voxel % 5 == 0 ? 0.4 : 0.0;
    std::vector<double> course(reference_.size());
    double last = 0.0;
    for (std::size_t t = 0; t < course.size(); ++t) {
      last = kCoefficient * last + normal() + (t > 0 ? coupling * reference_[t - 1] : 0.0);
      const double signal = isRegion ? reference_[t] + 0.3 * normal() : last;
      course[t] = base + sd * signal + drift * static_cast<double>(t) / static_cast<double>(course.size());
    }
    return course;
  }

 private:
  // A sum of uniform numbers is normal enough, and quick.
  double normal() {
    double sum = -6.0;
    for (int i = 0; i < 3; ++i) {
      const std::uint64_t bits = random_();
      for (int k = 0; k < 4; ++k) sum += static_cast<double>((bits >> (16 * k)) & 0xFFFFU) / 65536.0;
    }
    return sum;
  }
  double uniform(double low, double high) {
    return low + (high - low) * static_cast<double>(random_() >> 11) * 0x1p-53;
  }

  std::mt19937_64 random_;
  std::vector<double> reference_;
};

template <class T>
void writeCourse(std::FILE* file, const std::vector<double>& course) {
  std::vector<T> values(course.size());
  std::transform(course.begin(), course.end(), values.begin(), [](double v) { return static_cast<T>(v); });
  if (std::fwrite(values.data(), sizeof(T), values.size(), file) != values.size())
    throw std::runtime_error("disk full");
}

void writeFile(const std::string& path, const Workload& workload) {
  fakes::VtcSpec spec = fakes::cellGrid(workload.x, workload.y, workload.z, workload.volumes);
  spec.dataType = workload.isFloat ? 2 : 1;
  const File file(std::fopen(path.c_str(), "wb"));
  if (file == nullptr) throw std::runtime_error("cannot write " + path);
  const std::string header = fakes::vtcHeaderBytes(spec);
  std::fwrite(header.data(), 1, header.size(), file.get());
  VoxelMaker maker(workload.volumes);
  const std::vector<double> outside(static_cast<std::size_t>(workload.volumes), 0.0);
  const int n = workload.nrOfVoxels(), skipped = n - workload.includedVoxels;
  for (int voxel = 0; voxel < n; ++voxel) {
    // The included voxels lie in one block in the middle, as a brain does.
    const bool isInside = voxel >= skipped / 2 && voxel < skipped / 2 + workload.includedVoxels;
    const auto course = isInside ? maker.make(voxel, voxel < skipped / 2 + 27) : outside;
    workload.isFloat ? writeCourse<float>(file.get(), course)
                     : writeCourse<std::uint16_t>(file.get(), course);
  }
}

}  // namespace

int Workload::timePoints() const {
  int sum = 0;
  for (const tav::TAV_intv& interval : intervals) sum += interval.last - interval.first + 1;
  return sum;
}

std::vector<Workload> standardWorkloads() {
  const std::vector<tav::TAV_intv> four = {{1, 60}, {76, 135}, {151, 210}, {226, 285}};
  return {{"W1", 58, 40, 46, 300, false, 106720, 1, {{1, 300}}},
          {"W2", 58, 40, 46, 300, false, 106720, 5, four},
          {"W3", 91, 109, 91, 400, true, 231691, 1, {{1, 400}}},
          {"W4", 58, 40, 46, 300, false, 106720, 20, {{1, 300}}}};
}

Workload atlasWorkload() {
  return {"atlas", 58, 40, 46, 300, true, 100000, 1, {{1, 300}}};
}

std::string dataFile(const std::string& folder, const Workload& workload) {
  char name[128];
  std::snprintf(name, sizeof name, "/%dx%dx%dx%d_%d_%s.vtc", workload.x, workload.y, workload.z,
                workload.volumes, workload.includedVoxels, workload.isFloat ? "float" : "uint16");
  const std::string path = folder + name;
  if (!std::filesystem::exists(path)) {
    writeFile(path + ".part", workload);
    std::filesystem::rename(path + ".part", path);
  }
  return path;
}

tav::TAV_Pars makeRequest(const Workload& workload, const std::string& file) {
  static std::vector<std::vector<std::int32_t>> regions;
  auto& region = regions.emplace_back();
  const int first = (workload.nrOfVoxels() - workload.includedVoxels) / 2;
  for (int voxel = first; voxel < first + 27; ++voxel) {
    region.insert(region.end(),
                  {voxel % workload.x, voxel / workload.x % workload.y, voxel / workload.x / workload.y});
  }
  tav::TAV_Pars pars;
  pars.arOrder = workload.order;
  pars.nSurrogateSims = workload.nrOfSurrogates;
  pars.vtcXStart = pars.vtcYStart = pars.vtcZStart = 0;
  pars.vtcXEnd = workload.x;
  pars.vtcYEnd = workload.y;
  pars.vtcZEnd = workload.z;
  pars.vtcResolution = 1;
  pars.vtcMaxNrOfVolumes = workload.volumes;
  pars.resultPathPrefix = file + ".maps";
  pars.vois.push_back({"seed", 0, 27, region.data(), 0});
  pars.conds.push_back({"all", {{file, file, workload.intervals}}});
  return pars;
}

}  // namespace bench
