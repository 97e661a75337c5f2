// Compares the reference path and every kernel with the double-precision oracle of the tests, on
// evenly spread voxels of the workloads: kernel_accuracy FOLDER [WORKLOAD...].
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "bench/kernel/workloads.h"
#include "tav/kernel/dispatch.h"
#include "tav/tav.h"
#include "tests/kernel/oracle.h"

namespace {

using bench::Workload;

constexpr int kVoxels = 2000;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

std::vector<double> readCourse(std::FILE* file, long dataOffset, const Workload& workload, long voxel) {
  const auto n = static_cast<std::size_t>(workload.volumes);
  const long bytes = workload.isFloat ? 4 : 2;
  std::vector<float> floats(n);
  std::vector<std::uint16_t> shorts(n);
  void* const values = workload.isFloat ? static_cast<void*>(floats.data()) : shorts.data();
  const bool isRead = std::fseek(file, dataOffset + voxel * workload.volumes * bytes, SEEK_SET) == 0 &&
                      std::fread(values, static_cast<std::size_t>(bytes), n, file) == n;
  if (!isRead) throw std::runtime_error("cannot read the data file");
  return workload.isFloat ? std::vector<double>(floats.begin(), floats.end())
                          : std::vector<double>(shorts.begin(), shorts.end());
}

class Accuracy {
 public:
  Accuracy(const Workload& workload, const std::string& file)
      : workload_(workload),
        request_(bench::makeRequest(workload, file)),
        stream_(std::fopen(file.c_str(), "rb")) {
    request_.showVerboseProgress = false;
    require(computer_.Init(request_, errors_));
    std::ostringstream log;
    require(computer_.simSurrogateVOITCs(request_, log, errors_));
    first_ = (workload.nrOfVoxels() - workload.includedVoxels) / 2;
    step_ = std::max(workload.includedVoxels / kVoxels, 1);
    for (int i = 0; i * step_ < workload.includedVoxels; ++i) answers_.push_back(answer(first_ + i * step_));
  }
  ~Accuracy() { computer_.CleanUp(); }
  Accuracy(const Accuracy&) = delete;
  Accuracy& operator=(const Accuracy&) = delete;

  void print(const std::string& path) {
    tav::Computer computer(optionsFor(path));
    std::ostringstream log;
    require(computer.Init(request_, errors_));
    require(computer.simSurrogateVOITCs(request_, log, errors_));
    require(computer.compVOIConditionTAVs(request_.vois[0], request_.conds[0], request_, log, errors_));
    double worst = 0.0, squares = 0.0;
    int count = 0;
    for (std::size_t i = 0; i < answers_.size(); ++i) {
      if (!answers_[i].exists) continue;
      for (int m = 0; m < tav::kNrOfMeasures; ++m) {
        const float value = computer.rawMaps1->values(m)[first_ + static_cast<int>(i) * step_];
        const double error =
            std::abs(static_cast<double>(value) - answers_[i].measures[static_cast<std::size_t>(m)]);
        worst = std::max(worst, error);
        squares += error * error;
        ++count;
      }
    }
    std::printf("%-3s %-10s maximum %.2e  rms %.2e  (%d values)\n", workload_.name.c_str(), path.c_str(),
                worst, std::sqrt(squares / count), count);
    computer.CleanUp();
  }

 private:
  void require(int status) const {
    if (status != tav::kSuccess) throw std::runtime_error(errors_.str());
  }

  // The same surrogates for every path.
  static tav::RunOptions optionsFor(const std::string& path) {
    tav::RunOptions options;
    options.timeBase = 1;
    options.kernel = path;
    return options;
  }

  oracle::Answer answer(int voxel) {
    const float* const reference = computer_.voiTcs[0]->tc.elements();
    const auto course = readCourse(stream_.get(), computer_.vtcFiles[0]->header.dataOffset, workload_, voxel);
    std::vector<oracle::Segment> segments;
    for (const tav::TAV_intv& interval : workload_.intervals) {
      segments.push_back({{reference + interval.first - 1, reference + interval.last},
                          {course.begin() + interval.first - 1, course.begin() + interval.last}});
    }
    return oracle::geweke(segments, workload_.order, false);
  }

  Workload workload_;
  tav::TAV_Pars request_;
  tav::Computer computer_{optionsFor("")};
  std::unique_ptr<std::FILE, CloseFile> stream_;
  std::ostringstream errors_;
  int first_ = 0, step_ = 1;
  std::vector<oracle::Answer> answers_;
};

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s FOLDER [WORKLOAD...]\n", argv[0]);
    return 2;
  }
  for (const Workload& workload : bench::standardWorkloads()) {
    bool isWanted = argc == 2;
    for (int i = 2; i < argc; ++i) isWanted = isWanted || workload.name == argv[i];
    if (!isWanted) continue;
    Accuracy accuracy(workload, bench::dataFile(argv[1], workload));
    accuracy.print("reference");
    for (const auto& kernel : tav::kernel::allKernels()) {
      if (kernel.isSupported()) accuracy.print(kernel.name);
    }
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "kernel_accuracy: %s\n", error.what());
  return 1;
}
