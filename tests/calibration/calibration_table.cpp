// Measures whether the thresholds keep their promise: many simulated data sets, with and without
// influence, through all that `tavmap run` does, and what passed. One line of tab-separated values
// per setting and q on standard output.
//
// Usage: calibration_table [RUNS [FIRST END]]
// The kinds of data are numbered from 0; a part of them can be measured alone.
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "tests/calibration/chain_run.h"
#include "tests/calibration/rates.h"

namespace {

using calibration::Analysis;
using calibration::DataSetting;
using calibration::Discoveries;
using calibration::Rates;

constexpr unsigned kSeedsPerKind = 100000;  // the kinds of data are independent of each other

std::vector<DataSetting> kindsOfData() {
  std::vector<DataSetting> kinds;
  for (const auto& [inside, regionAcross] : {std::pair(false, 3), {true, 3}, {true, 10}})
    for (const double autocorrelation : {0.0, 0.8})
      for (const double driven : {0.0, 0.001, 0.01, 0.1}) {
        DataSetting& kind = kinds.emplace_back();
        kind.referenceInside = inside;
        kind.regionAcross = regionAcross;
        kind.autocorrelation = autocorrelation;
        kind.drivenShare = driven;
      }
  return kinds;
}

std::vector<Analysis> analysesOf(const DataSetting& kind) {
  std::vector<Analysis> analyses;
  for (const char* method : {"calibrated", "plugin"})
    for (const int cv : {1, 2})
      for (const int order : {1, 2, 3}) {
        if (kind.referenceInside && order > 1) continue;
        Analysis& analysis = analyses.emplace_back();
        analysis.method = method;
        analysis.cvConstant = cv;
        analysis.order = order;
      }
  return analyses;
}

// One entry per condition and q of every analysis.
using RatesOfAll = std::vector<std::vector<Rates>>;

RatesOfAll measure(const DataSetting& kind, const std::vector<Analysis>& analyses, int runs,
                   unsigned firstSeed) {
  RatesOfAll rates(analyses.size());
  for (int run = 0; run < runs; ++run) {
    const calibration::SimulatedData data(kind, firstSeed + static_cast<unsigned>(run));
    for (std::size_t a = 0; a < analyses.size(); ++a) {
      const std::vector<Discoveries> found = calibration::analyse(data, analyses[a]);
      rates[a].resize(found.size());
      for (std::size_t i = 0; i < found.size(); ++i) rates[a][i].add(found[i]);
    }
  }
  return rates;
}

void print(const DataSetting& kind, const Analysis& analysis, const std::vector<Rates>& rates, int runs) {
  for (std::size_t i = 0; i < rates.size(); ++i) {
    const Rates& t = rates[i];
    std::printf("%s\t%d\t%s\t%d\t%d\t%d\t%g\t%g\t%g\t%d\t%.3f\t%.3f\t%.4f\t%.4f\t%.3f\n",
                kind.referenceInside ? "inside" : "apart", kind.regionAcross * kind.regionAcross,
                analysis.method.c_str(), analysis.cvConstant, analysis.order,
                analysis.intervals[i / analysis.qs.size()], kind.autocorrelation, kind.drivenShare,
                analysis.qs[i % analysis.qs.size()], runs, t.anyPasses.mean(), t.anyPasses.standardError(),
                t.falseShare.mean(), t.falseShare.standardError(), t.power.mean());
  }
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::atoi(argv[1]) : 100;
  const std::vector<DataSetting> kinds = kindsOfData();
  const std::size_t first = argc > 3 ? static_cast<std::size_t>(std::atoi(argv[2])) : 0;
  const std::size_t end = argc > 3 ? static_cast<std::size_t>(std::atoi(argv[3])) : kinds.size();
  if (runs < 2 || end > kinds.size()) {
    std::fprintf(stderr, "usage: %s [RUNS [FIRST END]], with at least 2 runs and END up to %zu\n", argv[0],
                 kinds.size());
    return 2;
  }
  std::printf(
      "reference\tregion\tmethod\tcv\torder\tintervals\tautocorrelation\tdriven\tq\truns\t"
      "any\tany_se\tfdr\tfdr_se\tpower\n");
  for (std::size_t k = first; k < end; ++k) {
    const std::vector<Analysis> analyses = analysesOf(kinds[k]);
    const RatesOfAll rates = measure(kinds[k], analyses, runs, static_cast<unsigned>(k) * kSeedsPerKind);
    for (std::size_t a = 0; a < analyses.size(); ++a) print(kinds[k], analyses[a], rates[a], runs);
  }
  return 0;
}
