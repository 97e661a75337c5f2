// Measures whether the thresholds keep their promise: many simulated runs through the whole
// engine, with and without influence, and what passed. One line of tab-separated values per
// setting and q on standard output.
//
// Usage: calibration_table [RUNS [FIRST_SETTING END_SETTING]]
// The settings are numbered from 0; a part of them can be measured alone.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "tests/calibration/simulated_run.h"
#include "tests/fakes/vtc_file.h"

namespace {

using calibration::Discoveries;
using calibration::Setting;

constexpr unsigned kFirstSeed = 1;

struct Mean {
  double sum = 0, squares = 0;
  int n = 0;
  void add(double value) {
    sum += value;
    squares += value * value;
    ++n;
  }
  [[nodiscard]] double mean() const { return sum / n; }
  [[nodiscard]] double standardError() const {
    return n < 2 ? 0 : std::sqrt(std::max(0.0, squares / n - mean() * mean()) / (n - 1));
  }
};

struct Tally {
  Mean anyPasses, falseShare, power;
};

std::vector<Tally> measure(const Setting& setting, int runs, unsigned firstSeed, const std::string& folder) {
  std::vector<Tally> tallies(setting.qs.size());
  for (int run = 0; run < runs; ++run) {
    const auto found = calibration::simulateRun(setting, firstSeed + static_cast<unsigned>(run), folder);
    for (std::size_t q = 0; q < found.size(); ++q) {
      tallies[q].anyPasses.add(found[q].truly + found[q].falsely > 0 ? 1 : 0);
      tallies[q].falseShare.add(found[q].falseShare());
      tallies[q].power.add(found[q].power());
    }
  }
  return tallies;
}

void print(const Setting& s, const std::vector<Tally>& tallies, int runs) {
  for (std::size_t q = 0; q < tallies.size(); ++q) {
    const Tally& t = tallies[q];
    std::printf("%s\t%d\t%d\t%d\t%g\t%g\t%g\t%d\t%.3f\t%.3f\t%.4f\t%.4f\t%.3f\n", s.calibrated ? "calibrated" : "plugin",
                s.cvConstant, s.order, s.nrOfIntervals, s.autocorrelation, s.drivenShare, static_cast<double>(s.qs[q]),
                runs, t.anyPasses.mean(), t.anyPasses.standardError(), t.falseShare.mean(),
                t.falseShare.standardError(), t.power.mean());
  }
  std::fflush(stdout);
}

template <typename Visit>
void forEachSetting(Visit visit) {
  Setting s;
  for (const bool calibrated : {true, false})
    for (const int cv : {1, 2})
      for (const int order : {1, 2, 3})
        for (const int intervals : {1, 4})
          for (const double autocorrelation : {0.0, 0.8})
            for (const double driven : {0.0, 0.001, 0.01, 0.1}) {
              s.calibrated = calibrated;
              s.cvConstant = cv;
              s.order = order;
              s.nrOfIntervals = intervals;
              s.autocorrelation = autocorrelation;
              s.drivenShare = driven;
              visit(s);
            }
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::atoi(argv[1]) : 100;
  const int first = argc > 3 ? std::atoi(argv[2]) : 0;
  const int end = argc > 3 ? std::atoi(argv[3]) : std::numeric_limits<int>::max();
  if (runs < 2) {
    std::fprintf(stderr, "usage: %s [RUNS [FIRST_SETTING END_SETTING]], with at least 2 runs\n", argv[0]);
    return 2;
  }
  const fakes::TempFolder folder;
  std::printf(
      "method\tcv\torder\tintervals\tautocorrelation\tdriven\tq\truns\tany\tany_se\tfdr\tfdr_se\tpower\n");
  int number = 0;
  forEachSetting([&](const Setting& s) {
    if (number >= first && number < end) print(s, measure(s, runs, kFirstSeed, folder.path()), runs);
    ++number;
  });
  return 0;
}
