#include "connectome/edge_directions.h"

#include <memory>
#include <utility>

#include "connectome/in_parallel.h"
#include "direction/control.h"

namespace connectome {
namespace {

using Pair = std::pair<std::size_t, std::size_t>;

// Of one thread.
class PairJudge {
 public:
  PairJudge(const NodeSeries& series, int order, std::uint32_t seed)
      : series_(series), seed_(seed), control_(order, lengthsOf(series)) {
    for (const SeriesRun& run : series.runs) {
      intervals_.emplace_back();
      for (const Interval& interval : run.intervals)
        intervals_.back().push_back({interval.first, interval.length});
    }
  }

  EdgeDirection judge(const Pair& pair) {
    const auto row = series_.courseOf(pair.first), column = series_.courseOf(pair.second);
    std::vector<direction::RunSeries> runs;
    for (std::size_t run = 0; run < series_.runs.size(); ++run) {
      const auto volumes = static_cast<std::size_t>(series_.runs[run].volumes);
      runs.push_back({{row[run], volumes}, {column[run], volumes}, &intervals_[run]});
    }
    simo::RandomStream random(seedOf(pair));
    const auto verdict = control_.judge(runs, random);
    if (!verdict) return EdgeDirection::kNoVerdict;
    if (!verdict->isSupported()) return EdgeDirection::kNotSupported;
    return verdict->dtav > 0 ? EdgeDirection::kRowLeads : EdgeDirection::kColumnLeads;
  }

 private:
  static std::vector<int> lengthsOf(const NodeSeries& series) {
    std::vector<int> lengths;
    for (const SeriesRun& run : series.runs) lengths.push_back(run.volumes);
    return lengths;
  }
  // Multiplications by odd constants keep pairs apart.
  [[nodiscard]] unsigned seedOf(const Pair& pair) const {
    std::uint64_t mixed = seed_ + 0x9E3779B97F4A7C15ULL * (pair.first * series_.nodes + pair.second + 1);
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    return static_cast<unsigned>((mixed ^ (mixed >> 27U)) >> 33U);
  }

  const NodeSeries& series_;
  std::uint32_t seed_;
  direction::Control control_;
  std::vector<std::vector<direction::Interval>> intervals_;
};

EdgeDirection seenFromColumn(EdgeDirection code) {
  if (code == EdgeDirection::kRowLeads) return EdgeDirection::kColumnLeads;
  return code == EdgeDirection::kColumnLeads ? EdgeDirection::kRowLeads : code;
}

}  // namespace

std::vector<EdgeDirection> edgeDirections(const NodeSeries& series, int order, const EdgeTests& net, double q,
                                          std::uint32_t seed, int threads) {
  std::vector<Pair> pairs;
  for (std::size_t row = 0; row < series.nodes; ++row)
    for (std::size_t column = row + 1; column < series.nodes; ++column)
      if (net.q.at(row, column) <= q) pairs.emplace_back(row, column);
  std::vector<EdgeDirection> codes(series.nodes * series.nodes, EdgeDirection::kNotTested);
  inParallel(pairs.size(), threads, [&]() -> ItemWorker {
    return [&, judge = std::make_shared<PairJudge>(series, order, seed)](std::size_t i) {
      const auto [row, column] = pairs[i];
      const EdgeDirection code = judge->judge(pairs[i]);
      codes[row * series.nodes + column] = code;
      codes[column * series.nodes + row] = seenFromColumn(code);
    };
  });
  return codes;
}

}  // namespace connectome
