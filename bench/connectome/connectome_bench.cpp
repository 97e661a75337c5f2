// The time of a connectome and of its parts, on made series.
//   connectome_bench [labels [volumes [order [surrogates [threads]]]]]
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>

#include "connectome/edge_null.h"
#include "connectome/edge_tests.h"
#include "connectome/surrogate_shares.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

connectome::NodeSeries madeSeries(std::size_t nodes, int volumes) {
  std::mt19937 engine(1);
  std::normal_distribution<float> noise;
  connectome::SeriesRun run;
  run.volumes = volumes;
  run.intervals = {{0, volumes}};
  run.known = {{0, volumes}};
  for (std::size_t i = 0; i < nodes; ++i) {
    float value = 0, slow = 0;
    for (int t = 0; t < volumes; ++t) {
      slow = 0.9F * slow + noise(engine);
      value = 0.5F * value + slow + noise(engine);
      run.nodes.push_back(value);
    }
  }
  return {nodes, 0, {run}};
}

void say(const char* what, double seconds) {
  std::cout << what << "\t" << seconds << "\n";
}

// Parts of the null's work for one node, on one thread.
void tellParts(const connectome::NodeSeries& series, int order, std::size_t draws) {
  const connectome::FixedNodes nodes(series, order, connectome::Given::kNothing, 1);
  connectome::NodeSurrogates surrogates(series, draws, 1);
  connectome::LagBasis basis = nodes.basis;
  std::vector<double> vectors(basis.vectors() * basis.samples());
  auto start = Clock::now();
  if (!surrogates.begin(0)) return;
  for (std::size_t i = 0; i < draws; ++i) (void)surrogates.draw(i);
  say("one node: surrogates", secondsSince(start));
  const auto course = surrogates.draw(0);
  start = Clock::now();
  for (std::size_t i = 0; i < draws; ++i) (void)basis.of(course, vectors);
  say("one node: their vectors", secondsSince(start));
  connectome::SurrogateShares shares(nodes, order, draws);
  start = Clock::now();
  shares.compute(surrogates);
  say("one node: surrogates, vectors, products and fits", secondsSince(start));
  connectome::NullTally tally(series.nodes, draws);
  start = Clock::now();
  tally.add(0, {shares.toOthers(), shares.fromOthers(), shares.instantaneous(), nodes.columns},
            nodes.isDefined);
  say("one node: counting", secondsSince(start));
}

}  // namespace

int main(int argc, char** argv) {
  const auto argument = [&](int i, int otherwise) { return argc > i ? std::atoi(argv[i]) : otherwise; };
  const int nodes = argument(1, 400), volumes = argument(2, 1200), order = argument(3, 1);
  const int draws = argument(4, 1000), threads = argument(5, 2);
  const auto series = madeSeries(static_cast<std::size_t>(nodes), volumes);
  std::cout << "labels\t" << nodes << "\nvolumes\t" << volumes << "\norder\t" << order << "\nsurrogates\t"
            << draws << "\nthreads\t" << threads << "\npart\tseconds\n";
  tellParts(series, order, static_cast<std::size_t>(draws));
  auto start = Clock::now();
  const auto shares = connectome::edgeShares(series, order, threads);
  say("all edges", secondsSince(start));
  const auto nullStart = Clock::now();
  const auto null = connectome::edgeNull(series, order, {static_cast<std::size_t>(draws), 1, threads});
  say("their null", secondsSince(nullStart));
  const auto testStart = Clock::now();
  for (const connectome::Measure measure : connectome::kMeasures) (void)testEdges(shares, measure, null, 1.5);
  say("p, q and family-wise p", secondsSince(testStart));
  say("all", secondsSince(start));
}
