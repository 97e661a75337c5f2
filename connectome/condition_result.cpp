#include "connectome/condition_result.h"

#include <algorithm>

#include "connectome/conditioning.h"
#include "connectome/edge_null.h"

namespace connectome {
namespace {

void addParametric(const NodeSeries& series, const ConnectomeOptions& options, ConditionResult& result) {
  const GivenAllOthers fit = givenAllOthers(series, options.order);
  for (const Measure measure : kMeasures) {
    result.measures[static_cast<std::size_t>(measure)] = {
        measureOf(fit.shares, measure), testParametrically(fit, measure, options.order, options.fdrConstant)};
  }
}

void addAgainstSurrogates(const NodeSeries& series, const ConnectomeOptions& options,
                          ConditionResult& result) {
  const EdgeShares shares = edgeShares(series, options.order, options.threads);
  const NullTally null =
      edgeNull(series, options.order, {options.surrogates, options.seed, options.threads, options.progress});
  for (const Measure measure : kMeasures) {
    result.measures[static_cast<std::size_t>(measure)] = {
        measureOf(shares, measure), testEdges(shares, measure, null, options.fdrConstant)};
  }
}

// The pairs whose direction is of interest: by the net measure, or where it has no p by either influence.
EdgeTests ofPairs(const ConditionResult& result, bool hasNet) {
  if (hasNet) return result.of(Measure::kNet).tests;
  EdgeTests pairs = result.of(Measure::kInfluence).tests;
  for (std::size_t row = 0; row < pairs.q.nodes; ++row)
    for (std::size_t column = row + 1; column < pairs.q.nodes; ++column)
      pairs.q.at(row, column) = std::min(pairs.q.at(row, column), pairs.q.at(column, row));
  return pairs;
}

}  // namespace

std::size_t edgesWithin(const EdgeMatrix& levels, Measure measure, double level) {
  std::size_t count = 0;
  for (std::size_t row = 0; row < levels.nodes; ++row)
    for (std::size_t column = measure == Measure::kInfluence ? 0 : row + 1; column < levels.nodes; ++column)
      if (levels.at(row, column) <= level) ++count;
  return count;
}

ConditionResult computeCondition(const NodeSeries& series, const ConnectomeOptions& options) {
  ConditionResult result;
  if (options.givenAllOthers) {
    addParametric(series, options, result);
  } else {
    addAgainstSurrogates(series, options, result);
  }
  result.directions = edgeDirections(series, options.order, ofPairs(result, !options.givenAllOthers),
                                     options.q.back(), options.seed, options.threads);
  return result;
}

}  // namespace connectome
