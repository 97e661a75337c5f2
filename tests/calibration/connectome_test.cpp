// A short version of connectome_table: error rates of connectomes where nothing is related.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/calibration/connectome_data.h"

namespace {

using calibration::ConnectomeSet;
using connectome::Measure;

struct Findings {
  int setsWithFamilyWise = 0;
  double small = 0, edges = 0;
};

// Influence among unrelated nodes, 40 data sets of a third of a cell's nodes.
Findings findingsOf(calibration::ConnectomeCell cell) {
  cell.nodes = 10;
  Findings findings;
  for (unsigned i = 0; i < 40; ++i) {
    const ConnectomeSet set = makeConnectomeSet(cell, i);
    connectome::ConnectomeOptions options;
    options.surrogates = 100;
    options.seed = i + 1;
    const auto tests = computeCondition(set.series, options).of(Measure::kInfluence).tests;
    bool isAny = false;
    for (std::size_t a = 0; a < cell.nodes; ++a) {
      for (std::size_t b = 0; b < cell.nodes; ++b) {
        if (a == b || !set.isNull(a, b)) continue;
        isAny = isAny || tests.pFamilyWise.at(a, b) <= 0.05;
        findings.small += tests.p.at(a, b) <= 0.05 ? 1 : 0;
        findings.edges += 1;
      }
    }
    findings.setsWithFamilyWise += isAny ? 1 : 0;
  }
  return findings;
}

// .05 and four standard errors of 40 data sets.
constexpr int kMostSets = 7;

TEST(ConnectomeErrors, OfUnrelatedNodesOfUnequalMemoryHoldTheirLevel) {
  const Findings found = findingsOf(calibration::connectomeCells()[1]);
  EXPECT_LE(found.setsWithFamilyWise, kMostSets);
  EXPECT_NEAR(found.small / found.edges, 0.05, 0.015);
}

TEST(ConnectomeErrors, BetweenHalvesThatShareASignalEachHoldTheirLevel) {
  const Findings found = findingsOf(calibration::connectomeCells()[4]);
  EXPECT_LE(found.setsWithFamilyWise, kMostSets);
  EXPECT_LT(found.small / found.edges, 0.09);
}

}  // namespace
