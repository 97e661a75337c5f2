// Prints what tests of a group of 20 maps cost, and the same tests with mrclusterstats where it is installed.
//
// Usage: inference_table [SHUFFLES [THREADS]]    (1000 and 2)
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "bench/inference/made_group.h"
#include "bench/inference/peer.h"
#include "inference/run_test.h"

namespace {

using bench::Cost;
using inference::TestOptions;
using inference::TestResult;

constexpr std::size_t kRows = 20;

double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& t) {
    return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Measured {
  Cost cost;
  TestResult result;
};

class Table {
 public:
  Table(const bench::MadeGroup& group, int shuffles, int threads)
      : group_(group), shuffles_(shuffles), threads_(threads) {
    std::printf("%zu maps of %zu voxels, %d shuffles, %d threads\n\n%-52s %10s %10s %14s\n", group.rows,
                group.voxels.size(), shuffles, threads, "test", "wall, s", "CPU, s", "CPU, ms/shuffle");
  }

  void row(const std::string& what, const Cost& cost, int shuffles) const {
    std::printf("%-52s %10.2f %10.2f %14.2f\n", what.c_str(), cost.wallSeconds, cost.cpuSeconds,
                1e3 * cost.cpuSeconds / shuffles);
    std::fflush(stdout);
  }

  Measured test(const std::string& what, const inference::Model& model, int connectivity,
                TestOptions options) const {
    options.shuffles = shuffles_;
    options.threads = threads_;
    const auto space = inference::spaceOfVoxels(group_.grid, group_.voxels, connectivity, {2, 2, 2});
    const auto start = std::chrono::steady_clock::now();
    const double before = cpuSeconds();
    Measured measured{
        {}, runTest(model, {group_.rows, group_.voxels.size(), group_.maps.data()}, space, options)};
    measured.cost.cpuSeconds = cpuSeconds() - before;
    measured.cost.wallSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    row(what, measured.cost, shuffles_);
    return measured;
  }

 private:
  const bench::MadeGroup& group_;
  int shuffles_, threads_;
};

inference::Model oneSample() {
  return {{"mean"}, std::vector<double>(kRows, 1.0), {1}};
}

inference::Model twoSamplesAndAge() {
  inference::Model model{{"a", "b", "age"}, {}, {1, -1, 0}};
  for (std::size_t row = 0; row < kRows; ++row)
    model.design.insert(model.design.end(),
                        {row % 2 ? 1.0 : 0.0, row % 2 ? 0.0 : 1.0, std::sin(static_cast<double>(row * row))});
  return model;
}

TestOptions maximumOnly() {
  TestOptions options;
  options.enhance = false;
  options.clusterFormingZ = 0;
  return options;
}

TestOptions enhanced() {
  TestOptions options = maximumOnly();
  options.enhance = true;
  return options;
}

void comparePeer(const Table& table, const bench::MadeGroup& group, int shuffles, const Measured& own,
                 const Measured& ownMaximum) {
  const std::string folder = bench::writeForPeer(group);
  const int few = std::max(50, shuffles / 5);  // its cost grows as the shuffles do
  const Cost start = bench::runPeer(folder, 2);
  const Cost peer = bench::runPeer(folder, few);
  table.row("mrclusterstats, enhanced, positive, 6 neighbours", peer, few);
  const double ratio = (peer.cpuSeconds - start.cpuSeconds) / (few - 2) / (own.cost.cpuSeconds / shuffles);
  std::printf("\nmrclusterstats takes %.1f times the CPU time per shuffle, both for the positive side\n",
              ratio);
  const auto t = bench::readPeerMap(folder, "tvalue", group);
  const auto map = bench::readPeerMap(folder, "tfce", group);
  double tApart = 0, mapApart = 0, largest = 0;
  for (std::size_t i = 0; i < t.size(); ++i) {
    tApart = std::max(tApart, std::abs(static_cast<double>(t[i] - ownMaximum.result.t[i])));
    largest = std::max(largest, static_cast<double>(map[i]));
    mapApart =
        std::max(mapApart, std::abs(static_cast<double>(map[i] - std::max(0.0F, own.result.enhanced[i]))));
  }
  std::printf("t differ by %.2g at most, enhanced values under its rule by %.2g of their maximum\n", tApart,
              mapApart / largest);
}

}  // namespace

int main(int argc, char** argv) {
  const int shuffles = argc > 1 ? std::atoi(argv[1]) : 1000, threads = argc > 2 ? std::atoi(argv[2]) : 2;
  if (shuffles < 1 || threads < 1)
    return std::fprintf(stderr, "usage: %s [SHUFFLES [THREADS]]\n", argv[0]), 2;
  const bench::MadeGroup group = bench::makeGroup(kRows, 1);
  const Table table(group, shuffles, threads);
  const auto maximum = table.test("sign flips, largest t", oneSample(), 6, maximumOnly());
  TestOptions options = maximumOnly();
  options.exchange = inference::Exchange::kPermutations;
  table.test("permutations of two groups and age, largest t", twoSamplesAndAge(), 6, options);
  options = maximumOnly();
  options.clusterFormingZ = 3.1;
  table.test("sign flips, clusters", oneSample(), 6, options);
  options = maximumOnly();
  options.varianceFwhmMm = 8;
  table.test("sign flips, variances smoothed by 8 mm", oneSample(), 6, options);
  for (const int connectivity : {18, 26})
    table.test("sign flips, enhanced, both signs, " + std::to_string(connectivity) + " neighbours",
               oneSample(), connectivity, enhanced());
  const auto integral =
      table.test("sign flips, enhanced, both signs, 6 neighbours", oneSample(), 6, enhanced());
  options = enhanced();
  options.twoSided = false;
  options.enhancement.step = 0.1;
  const auto steps =
      table.test("sign flips, by steps of .1, positive, 6 neighbours", oneSample(), 6, options);
  if (!bench::isPeerInstalled()) {
    std::printf("\nmrclusterstats is not installed (Debian's package mrtrix3); nothing to compare with\n");
    return 0;
  }
  comparePeer(table, group, shuffles, steps, maximum);
}
