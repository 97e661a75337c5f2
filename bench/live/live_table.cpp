// What a new reference costs a person who moves it: live_table FOLDER [THREADS [REPETITIONS]]. FOLDER takes
// the data.
//
// Time that passes, warm: a sphere of 113 voxels walks through the brain, and each stop is computed from its
// voxels to values, thresholds and p. The median and the slowest of the stops; and the median CPU time of all
// threads and of the calling one, which a busy machine disturbs less. Maps: the three measures and their
// difference. Cancelled are full computations after a random part of their time: from setting the flag until
// the engine has returned.
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <random>
#include <thread>

#include "bench/study/made_study.h"
#include "live/engine.h"
#include "prepare/prepare.h"
#include "request/request_file.h"
#include "tav/at_once.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

struct Target {
  double draft, full;  // milliseconds on two processors
};
struct Case {
  bench::MadeRun run;
  Target target;
};
const Case kCases[] = {
    {{"live-w1", {58, 40, 46}, 300, formats::DataType::kInt16, true}, {15, 60}},
    {{"live-large", {64, 72, 50}, 400, formats::DataType::kInt16, true}, {45, 160}},
};

const std::atomic<bool> kNotCancelled = false;

double usedMilliseconds(int whose) {
  rusage usage{};
  getrusage(whose, &usage);
  return 1e3 * static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         1e-3 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

// Of all threads: what the work takes, whoever else is at work on the machine.
double cpuMilliseconds() {
  return usedMilliseconds(RUSAGE_SELF);
}

// Of the calling thread, which takes part in everything: what passes on processors that have nothing else to
// do.
double ownMilliseconds() {
  return usedMilliseconds(RUSAGE_THREAD);
}

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct Times {
  std::vector<double> all;
  [[nodiscard]] double median() {
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
  }
  [[nodiscard]] double slowest() const { return *std::max_element(all.begin(), all.end()); }
};

std::shared_ptr<const live::LoadedStudy> loaded(const fs::path& folder, const bench::MadeRun& run) {
  const study::Request request = study::readRequestFile(bench::requestFile(folder, run, 1, "live"));
  const study::StudyPlan plan = study::planStudy(request, 1, "bench");
  fs::create_directories(plan.workFolder);
  if (!study::isPrepared(plan.runs[0], plan.workFolder))
    study::prepareRun(plan.runs[0], plan.workFolder, request.settings.inclusionThreshold, [](double) {});
  live::LoadOptions options;
  options.version = "bench";
  options.mostBytes = std::size_t{4} << 30U;
  return live::loadStudy(request, options);
}

// The stop with this number of a walk along the diagonal.
live::Ask stopOf(const live::LoadedStudy& study, int number) {
  const study::Grid& grid = study.plan.space.grid;
  const int at = 8 + number % (std::min({grid.size.x, grid.size.y, grid.size.z}) - 16);
  live::Ask ask;
  ask.reference.centreMm = grid.toMm({at, at, at});
  ask.reference.radiusMm = 3;
  ask.condition = study.plan.conditions[0].name;
  return ask;
}

class Row {
 public:
  Row(const Case& one, const fs::path& folder, int threads, int repetitions)
      : case_(one), study_(loaded(folder, one.run)), engine_(study_, threads), repetitions_(repetitions) {}

  void print() {
    const double mb = static_cast<double>(study_->bytes) / 1e6;
    std::printf("%zu voxels x %d volumes, series in memory %.0f MB\n", study_->cells.size(),
                study_->plan.runs[0].volumes.volumes, mb);
    printTimes("new reference, one draw, four maps", live::Care::kDraft, case_.target.draft);
    printTimes("20 draws, thresholds and p, one map", live::Care::kFull, case_.target.full, {tav::DTAV});
    printTimes("the same of all four maps", live::Care::kFull, case_.target.full);
    printCancels();
  }

 private:
  void compute(live::Care care, const std::atomic<bool>& cancel) {
    live::Ask ask = stopOf(*study_, stop_++);
    ask.types = types_;
    static_cast<void>(engine_.compute(ask, care, cancel));
  }

  void printTimes(const char* what, live::Care care, double target,
                  std::set<tav::MapType> types = {tav::REF2VOX, tav::VOX2REF, tav::INST, tav::DTAV}) {
    types_ = std::move(types);
    compute(care, kNotCancelled);
    Times times, cpu, own;
    for (int i = 0; i < repetitions_; ++i) {
      const Clock::time_point start = Clock::now();
      const double cpuBefore = cpuMilliseconds(), ownBefore = ownMilliseconds();
      compute(care, kNotCancelled);
      times.all.push_back(millisecondsSince(start));
      cpu.all.push_back(cpuMilliseconds() - cpuBefore);
      own.all.push_back(ownMilliseconds() - ownBefore);
    }
    if (care == live::Care::kFull) full_ = times.median();
    std::printf("  %-34s %7.1f ms  (slowest %.1f, CPU %.1f, of the calling thread %.1f; %.0f at most)\n",
                what, times.median(), times.slowest(), cpu.median(), own.median(), target);
  }

  void printCancels() {
    std::minstd_rand random(1);
    Times times;
    for (int i = 0; i < repetitions_; ++i) {
      std::atomic<bool> cancel = false;
      Clock::time_point end;
      std::thread computing([&] {
        try {
          compute(live::Care::kFull, cancel);
        } catch (const tav::Cancelled&) {
          isCancelled_ = true;
        }
        end = Clock::now();
      });
      const double share = 0.9 * static_cast<double>(random()) / static_cast<double>(random.max());
      std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(share * full_));
      const Clock::time_point start = Clock::now();
      cancel = true;
      computing.join();
      if (isCancelled_.exchange(false))
        times.all.push_back(std::chrono::duration<double, std::milli>(end - start).count());
    }
    if (times.all.empty()) return;
    std::printf("  %-34s %7.1f ms  (slowest %.1f; 5 at most)\n", "cancelled", times.median(),
                times.slowest());
  }

  const Case& case_;
  std::shared_ptr<const live::LoadedStudy> study_;
  live::Engine engine_;
  int repetitions_;
  int stop_ = 0;
  std::set<tav::MapType> types_;
  double full_ = 0;
  std::atomic<bool> isCancelled_ = false;
};

double peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

int numberOr(const char* text, int otherwise) {
  return text == nullptr ? otherwise : std::max(1, std::atoi(text));
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 2 || argc > 4) {
    std::fprintf(stderr, "usage: %s FOLDER [THREADS [REPETITIONS]]\n", argv[0]);
    return 2;
  }
  const int threads =
      numberOr(argc > 2 ? argv[2] : nullptr, static_cast<int>(std::thread::hardware_concurrency()));
  const int repetitions = numberOr(argc > 3 ? argv[3] : nullptr, 20);
  std::printf("%d threads\n", threads);
  for (const Case& one : kCases) Row(one, fs::absolute(argv[1]), threads, repetitions).print();
  std::printf("peak memory of both %.0f MB\n", peakMegabytes());
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "live_table: %s\n", error.what());
  return 1;
}
