// Error rates of connectomes on data whose truth is known: the table of docs/calibration.md.
//   connectome_table [data sets [row]]
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "tests/calibration/connectome_data.h"

namespace {

struct Rates {
  int sets = 0, familyWise[3] = {}, discoveries[3] = {};
  double small[3] = {}, edges[3] = {};
};

void count(const calibration::ConnectomeSet& set, const connectome::ConditionResult& result, Rates& rates) {
  ++rates.sets;
  for (const connectome::Measure measure : connectome::kMeasures) {
    const auto m = static_cast<std::size_t>(measure);
    const connectome::EdgeTests& tests = result.of(measure).tests;
    bool isAny = false, isDiscovered = false;
    for (std::size_t a = 0; a < set.series.nodes; ++a) {
      for (std::size_t b = measure == connectome::Measure::kInfluence ? 0 : a + 1; b < set.series.nodes;
           ++b) {
        if (a == b || !set.isNull(a, b) || std::isnan(tests.p.at(a, b))) continue;
        rates.edges[m] += 1;
        rates.small[m] += tests.p.at(a, b) <= 0.05 ? 1 : 0;
        isAny = isAny || tests.pFamilyWise.at(a, b) <= 0.05;
        isDiscovered = isDiscovered || tests.q.at(a, b) <= 0.05;
      }
    }
    rates.familyWise[m] += isAny ? 1 : 0;
    rates.discoveries[m] += isDiscovered ? 1 : 0;
  }
}

void tell(const calibration::ConnectomeCell& cell, const Rates& rates) {
  constexpr const char* kNames[] = {"influence", "instantaneous", "net"};
  for (int m = 0; m < 3; ++m) {
    if (!(rates.edges[m] > 0)) continue;
    const auto rate = [&](int count) {
      const double share = static_cast<double>(count) / rates.sets;
      std::printf(" | %.3f ± %.3f", share, std::sqrt(share * (1 - share) / rates.sets));
    };
    std::printf("| %s | %d | %s", cell.name, cell.volumes, kNames[m]);
    rate(rates.familyWise[m]);
    rate(rates.discoveries[m]);
    std::printf(" | %.4f |\n", rates.small[m] / rates.edges[m]);
  }
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int sets = argc > 1 ? std::atoi(argv[1]) : 200;
  std::printf(
      "| data | volumes | measure | family-wise .05: any edge | q = .05: any edge | p of .05 or less |\n"
      "|---|---|---|---|---|---|\n");
  const int only = argc > 2 ? std::atoi(argv[2]) : -1;
  int row = 0;
  for (const calibration::ConnectomeCell& cell : calibration::connectomeCells()) {
    if (row++ != only && only >= 0) continue;
    Rates rates;
    for (int i = 0; i < sets; ++i) {
      const calibration::ConnectomeSet set = calibration::makeConnectomeSet(cell, static_cast<unsigned>(i));
      connectome::ConnectomeOptions options;
      options.surrogates = 200;
      options.order = cell.order;
      options.givenAllOthers = cell.givenAllOthers;
      options.seed = static_cast<std::uint32_t>(i + 1);
      count(set, computeCondition(set.series, options), rates);
    }
    tell(cell, rates);
  }
}
