// What `tavmap run` costs against what it cannot do without, all measured in this run:
// study_table TAVMAP FOLDER [--large]. TAVMAP is the program, FOLDER takes the data; --large adds the
// peak memory of a run of 91 x 109 x 91 voxels and 400 volumes of floats (a file of 1.3 GB).
//
// CPU time of all processes, the best of several repetitions in turn; for two workers the time that
// passes. Every run of the program starts without an imported series and without results.
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "bench/study/child.h"
#include "bench/study/made_study.h"
#include "formats/byte_source.h"
#include "formats/vtc_import.h"
#include "prepare/prepare.h"
#include "request/request_file.h"
#include "study/engine_request.h"
#include "study/file_store.h"
#include "study/study_plan.h"
#include "tav/tav.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRepetitions = 8;
const bench::MadeRun kRun{"made", {80, 80, 35}, 156, formats::DataType::kInt16};
const bench::MadeRun kLargeRun{"large", {91, 109, 91}, 400, formats::DataType::kFloat32};

double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

double timed(const std::function<void()>& work) {
  const double start = cpuSeconds();
  work();
  return cpuSeconds() - start;
}

void decompress(const fs::path& bold) {
  std::vector<char> piece(std::size_t{1} << 20U);
  const auto source = formats::openPlainOrGzip(bold.string());
  while (source->read(piece.data(), piece.size()) > 0) {
  }
}

void importOnce(const fs::path& bold) {
  const fs::path vtc = bold.parent_path() / "import.vtc";
  formats::ImportOptions options;
  options.durability = formats::Durability::kCached;
  fs::remove(vtc);
  formats::importVtc(bold.string(), vtc.string(), options);
}

// The engine on the imported series, from its first look at the files to the saved map set.
class Engine {
 public:
  explicit Engine(const fs::path& request)
      : plan_(study::planStudy(study::readRequestFile(request), 1, "bench")) {
    fs::create_directories(plan_.workFolder);
    study::prepareRun(plan_.runs[0], plan_.workFolder, plan_.request.settings.inclusionThreshold,
                      [](double) {});
  }

  void run() const {
    fs::create_directories(plan_.request.output.folder);
    study::FileStore store(plan_.request.output.folder, plan_.workFolder / plan_.runs[0].vtcName);
    const tav::TAV_Pars pars = study::engineRequest(plan_.request.settings, plan_.order, plan_.runs,
                                                    plan_.conditions, {&plan_.regions[0]}, "engine");
    tav::RunOptions options = study::engineOptions(plan_.request.settings);
    options.vtcFolder = plan_.workFolder.string();
    std::ostringstream errors;
    tav::Computer computer(options, nullptr, &store);
    if (computer.computeTAVs(pars, errors) != tav::kSuccess) throw std::runtime_error(errors.str());
  }

 private:
  study::StudyPlan plan_;
};

// A new folder for every run of the program. The files of the one before are emptied, which frees their
// memory, and removed at the end: some file systems take long to reuse inodes deleted a moment ago.
class ResultFolders {
 public:
  explicit ResultFolders(fs::path parent) : parent_(std::move(parent)) { fs::remove_all(parent_); }
  ~ResultFolders() {
    std::error_code ignored;
    fs::remove_all(parent_, ignored);
  }
  ResultFolders(const ResultFolders&) = delete;
  ResultFolders& operator=(const ResultFolders&) = delete;

  fs::path next() {
    const fs::path last = parent_ / std::to_string(count_);
    if (fs::exists(last)) {
      for (const fs::directory_entry& entry : fs::recursive_directory_iterator(last)) {
        if (entry.is_regular_file()) fs::resize_file(entry.path(), 0);
      }
    }
    return parent_ / std::to_string(++count_);
  }

 private:
  fs::path parent_;
  int count_ = 0;
};

class StudyTable {
 public:
  StudyTable(std::string program, fs::path folder)
      : program_(std::move(program)), folder_(std::move(folder)), results_(folder_ / "results") {}

  void print() {
    const fs::path bold = bench::boldFile(folder_, kRun);
    const Engine engine(bench::requestFile(folder_, kRun, 1, "engine"));
    for (int i = 0; i < kRepetitions; ++i) {
      lower(decompression_, timed([&] { decompress(bold); }));
      lower(import_, timed([&] { importOnce(bold); }));
      lower(engine_, timed([&] { engine.run(); }));
      lower(one_, run(kRun, 1, 1).cpuSeconds);
      lower(ten_, run(kRun, 10, 1).cpuSeconds);
      lower(oneJob_, run(kRun, 20, 1).wallSeconds);
      lower(twoJobs_, run(kRun, 20, 2).wallSeconds);
    }
    std::printf("80 x 80 x 35 voxels, 156 volumes, int16, 20 draws per voxel; seconds\n");
    row("bare decompression", decompression_);
    row("import", import_, import_ / decompression_, 2.0, "of bare decompression");
    row("engine, one reference", engine_);
    row("tavmap run, one reference", one_, one_ / (import_ + engine_), 1.5, "of import + engine");
    row("tavmap run, ten references", ten_, ten_ / one_, 4.0, "of one");
    row("tavmap run, twenty, one worker", oneJob_);
    row("tavmap run, twenty, two workers", twoJobs_, twoJobs_ / oneJob_, 0.6, "of one worker");
  }

  void printLarge() {
    const bench::Cost cost = run(kLargeRun, 1, 1);
    std::printf(
        "91 x 109 x 91 voxels, 400 volumes, float: %.1f s of CPU time, peak memory %.0f MB (300 at most)\n",
        cost.cpuSeconds, cost.peakMegabytes);
  }

 private:
  bench::Cost run(const bench::MadeRun& made, int references, int jobs) {
    const fs::path request = bench::requestFile(folder_, made, references, "results");
    const fs::path results = results_.next();
    return bench::runChild({program_, "run", request.string(), "--jobs", std::to_string(jobs), "--out",
                            results.string(), "--work-dir", (results / "work").string()});
  }

  static void lower(double& best, double seconds) {
    if (best == 0 || seconds < best) best = seconds;
  }
  static void row(const char* what, double seconds) { std::printf("%-34s %7.3f\n", what, seconds); }
  static void row(const char* what, double seconds, double ratio, double limit, const char* base) {
    std::printf("%-34s %7.3f  %5.2f %s (%.1f at most)\n", what, seconds, ratio, base, limit);
  }

  std::string program_;
  fs::path folder_;
  ResultFolders results_;
  double decompression_ = 0, import_ = 0, engine_ = 0, one_ = 0, ten_ = 0, oneJob_ = 0, twoJobs_ = 0;
};

}  // namespace

int main(int argc, char** argv) try {
  const bool large = argc == 4 && std::strcmp(argv[3], "--large") == 0;
  if (argc != 3 && !large) {
    std::fprintf(stderr, "usage: %s TAVMAP FOLDER [--large]\n", argv[0]);
    return 2;
  }
  StudyTable table(fs::absolute(argv[1]).string(), fs::absolute(argv[2]));
  table.print();
  if (large) table.printLarge();
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "study_table: %s\n", error.what());
  return 1;
}
