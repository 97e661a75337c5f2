// Prints the performance table: kernel_table FOLDER [WORKLOAD... | atlas]. FOLDER takes the data files.
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "bench/kernel/limit.h"
#include "bench/kernel/phases.h"
#include "tav/kernel/dispatch.h"

namespace {

using bench::Phases;
using bench::Workload;

constexpr double kMs = 1e3;
const std::string kReference = "reference";

std::vector<std::string> paths() {
  std::vector<std::string> names = {kReference};
  for (const auto& kernel : tav::kernel::allKernels()) {
    if (kernel.isSupported()) names.insert(names.begin() + 1, kernel.name);
  }
  return names;
}

void printRow(const Workload& workload, const std::string& path, const Phases& phases, double limit,
              double reference) {
  std::printf("%-3s %-10s %9.1f %6.2fx %8.1f %8.1f %8.1f %8.1f %9.1f %6.1fx  %d/%d  %.6e\n",
              workload.name.c_str(), path.c_str(), phases.loop * kMs, phases.loop / limit,
              phases.surrogates * kMs, phases.prepare * kMs, phases.thresholds * kMs, phases.transfer * kMs,
              phases.whole * kMs, reference / phases.whole, phases.illDefined, phases.surrogatesIllDefined,
              phases.checksum);
  std::fflush(stdout);
}

// Limit and paths are measured in turn, several times over: on a shared machine a slow moment then hits
// none of them alone.
constexpr int kRounds = 5, kRepetitions = 2;

void printWorkload(const std::string& folder, const Workload& workload, const bench::Peak& peak) {
  const std::string file = bench::dataFile(folder, workload);
  const std::vector<std::string> names = paths();
  std::vector<Phases> best;
  double reading = bench::readSeconds(file, workload);
  for (const std::string& path : names)
    best.push_back(bench::measurePhases(workload, file, path, path == kReference ? 1 : kRepetitions));
  for (int round = 1; round < kRounds; ++round) {
    reading = std::min(reading, bench::readSeconds(file, workload));
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (names[i] != kReference) best[i].lower(bench::measurePhases(workload, file, names[i], kRepetitions));
    }
  }
  const double arithmetic = bench::multiplyAdds(workload) / peak.best();
  const double limit = reading + arithmetic;
  std::printf("%-3s reading %.1f ms, arithmetic %.1f ms, LIMIT %.1f ms\n", workload.name.c_str(),
              reading * kMs, arithmetic * kMs, limit * kMs);
  for (std::size_t i = 0; i < names.size(); ++i) printRow(workload, names[i], best[i], limit, best[0].whole);
}

// Of the whole process so far, the data files in the page cache not counted.
void printPeakMemory(const Workload& workload) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%-3s peak memory so far %.0f MB\n", workload.name.c_str(),
              static_cast<double>(usage.ru_maxrss) / 1024.0);
}

void printDraws(const std::string& folder, const Workload& workload, int draws) {
  const std::string file = bench::dataFile(folder, workload);
  const std::string best = tav::kernel::bestKernel().name;
  double one = bench::measurePhases(workload, file, best, 1).loop, many = one * draws;
  for (int round = 0; round < kRounds; ++round) {
    one = std::min(one, bench::measurePhases(workload, file, best, kRepetitions).loop);
    many = std::min(many, bench::measurePhases(workload, file, best, kRepetitions, draws).loop);
  }
  std::printf("%s with %d null draws: %.1f ms, %.1f times one draw\n", workload.name.c_str(), draws,
              many * kMs, many / one);
}

// The two forms of fits in turn, and whole maps of surrogates.
void printLeastSquares(const std::string& folder, const Workload& workload, int draws) {
  constexpr int kMaps = 1000;
  const std::string file = bench::dataFile(folder, workload);
  const std::string best = tav::kernel::bestKernel().name;
  double written = 1e9, squares = 1e9, oneThread = 1e9, twoThreads = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    written = std::min(written, bench::measurePhases(workload, file, best, kRepetitions, draws).loop);
    squares = std::min(
        squares,
        bench::measurePhases(workload, file, best, kRepetitions, draws, tav::FitForm::kLeastSquares).loop);
  }
  for (int round = 0; round < 2; ++round) {
    oneThread = std::min(oneThread, bench::wholeMapSeconds(workload, file, best, kMaps, 1));
    twoThreads = std::min(twoThreads, bench::wholeMapSeconds(workload, file, best, kMaps, 2));
  }
  std::printf("%s by least squares with %d null draws: %.1f ms, %.2f times the written form\n",
              workload.name.c_str(), draws, squares * kMs, squares / written);
  std::printf("%s: %d whole maps of surrogates on one thread: %.2f s, on two: %.2f s\n",
              workload.name.c_str(), kMaps, oneThread, twoThreads);
}

// All references of an atlas over 100,000 voxels.
void printAtlas(const std::string& folder) {
  constexpr int kReferences = 116, kDraws = 20;
  const Workload workload = bench::atlasWorkload();
  const double seconds = bench::atlasSecondsPerReference(workload, bench::dataFile(folder, workload),
                                                         tav::kernel::bestKernel().name, kReferences, kDraws);
  std::printf("%d references over %d voxels, %d null draws: %.3f s of CPU each\n", kReferences,
              workload.includedVoxels, kDraws, seconds);
}

int run(const std::string& folder, const std::vector<std::string>& wanted) {
  const bench::Peak peak = bench::measurePeak();
  std::printf("multiply-add peak: %.1f G/s with 256 bits, %.1f G/s with 512 bits\n", peak.with256 / 1e9,
              peak.with512 / 1e9);
  std::printf("%-3s %-10s %9s %7s %8s %8s %8s %8s %9s %7s  ill-defined  sum of measures\n", "", "path",
              "loop ms", "/LIMIT", "surrog.", "tables", "thresh.", "maps", "whole ms", "faster");
  for (const Workload& workload : bench::standardWorkloads()) {
    bool isWanted = wanted.empty();
    for (const std::string& name : wanted) isWanted = isWanted || name == workload.name;
    if (isWanted) printWorkload(folder, workload, peak);
    if (isWanted) printPeakMemory(workload);
    if (isWanted && workload.name == "W1") printDraws(folder, workload, 20);
    if (isWanted && workload.name == "W1") printLeastSquares(folder, workload, 20);
  }
  if (std::find(wanted.begin(), wanted.end(), "atlas") != wanted.end()) printAtlas(folder);
  return 0;
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s FOLDER [WORKLOAD...]\n", argv[0]);
    return 2;
  }
  return run(argv[1], std::vector<std::string>(argv + 2, argv + argc));
} catch (const std::exception& error) {
  std::fprintf(stderr, "kernel_table: %s\n", error.what());
  return 1;
}
