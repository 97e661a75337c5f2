// Measures how the cost of a run grows with each of its sizes, the others staying as in W1, and
// prints a table of tab-separated lines "size value milliseconds": kernel_growth FOLDER. FOLDER
// takes the data files. The path is the one that TAVMAP_KERNEL names, else the fastest.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <stdexcept>

#include "bench/kernel/phases.h"
#include "bench/kernel/stopwatch.h"
#include "tav/kernel/dispatch.h"
#include "tav/tav.h"

namespace {

using bench::Workload;

constexpr int kRepetitions = 3;

std::string g_folder;
std::string g_kernel;

void print(const char* size, int value, double seconds) {
  std::printf("%s\t%d\t%.2f\n", size, value, seconds * 1e3);
  std::fflush(stdout);
}

// The voxel loop alone.
void printLoop(const char* size, int value, const Workload& workload, int draws = 1) {
  const std::string file = bench::dataFile(g_folder, workload);
  print(size, value, bench::measurePhases(workload, file, g_kernel, kRepetitions, draws).loop);
}

void printSurrogates(int count, Workload workload) {
  workload.nrOfSurrogates = count;
  const std::string file = bench::dataFile(g_folder, workload);
  const bench::Phases phases = bench::measurePhases(workload, file, g_kernel, kRepetitions);
  print("surrogates", count, phases.surrogates + phases.prepare + phases.loop);
}

// A whole run over `count` reference regions, neighbours of each other.
void printReferences(int count, const Workload& workload) {
  tav::TAV_Pars request = bench::makeRequest(workload, bench::dataFile(g_folder, workload));
  request.showVerboseProgress = false;
  const tav::TAV_VOI_Pars region = request.vois[0];
  request.vois.clear();
  for (int i = 0; i < count; ++i) {
    request.vois.push_back(region);
    request.vois.back().name += std::to_string(i);
    request.vois.back().voxels += 3 * i;
    request.vois.back().nVoxels = 27 - i;
  }
  print("references", count, bench::bestSeconds(kRepetitions, [&] {
          std::ostringstream errors;
          tav::Computer computer;
          if (computer.computeTAVs(request, errors) != tav::kSuccess) throw std::runtime_error(errors.str());
        }));
}

Workload withVoxels(Workload workload, int slices) {
  workload.z = slices;
  workload.includedVoxels = workload.nrOfVoxels();
  return workload;
}

Workload withVolumes(Workload workload, int volumes) {
  workload.volumes = volumes;
  workload.intervals = {{1, volumes}};
  return workload;
}

// The 300 volumes in equal parts.
Workload withIntervals(Workload workload, int count) {
  workload.intervals.clear();
  for (int i = 0; i < count; ++i) workload.intervals.push_back({i * 300 / count + 1, (i + 1) * 300 / count});
  return workload;
}

Workload withOrder(Workload workload, int order) {
  workload.order = order;
  return workload;
}

void run() {
  const Workload w1 = bench::standardWorkloads().front();
  for (const int slices : {6, 12, 23, 46, 92})
    printLoop("voxels", withVoxels(w1, slices).includedVoxels, withVoxels(w1, slices));
  for (const int volumes : {75, 150, 300, 600, 1200}) printLoop("volumes", volumes, withVolumes(w1, volumes));
  for (const int order : {1, 2, 3, 4, 5, 7, 10, 15, 20}) printLoop("order", order, withOrder(w1, order));
  for (const int count : {1, 2, 4, 10, 20}) printLoop("intervals", count, withIntervals(w1, count));
  for (const int draws : {1, 2, 5, 10, 20, 50}) printLoop("null draws", draws, w1, draws);
  for (const int count : {100, 1000, 3000, 10000}) printSurrogates(count, w1);
  for (const int count : {1, 2, 5, 10}) printReferences(count, w1);
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  g_folder = argv[1];
  const char* const forced = std::getenv("TAVMAP_KERNEL");
  g_kernel = forced != nullptr ? forced : tav::kernel::bestKernel().name;
  run();
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "kernel_growth: %s\n", error.what());
  return 1;
}
