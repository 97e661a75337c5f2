#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "report/evidence_charts.h"
#include "report/html.h"
#include "results/map_words.h"
#include "tav/map_kinds.h"

namespace report {
namespace {

using study::MapEvidence;
using study::MapResult;

const MapResult* resultOf(const study::ConditionRecord& condition, tav::MapType type) {
  for (const MapResult& map : condition.maps)
    if (map.type == type) return &map;
  return nullptr;
}

std::vector<ChartMark> thresholdMarks(const MapResult* map) {
  std::vector<ChartMark> marks;
  if (map == nullptr) return marks;
  for (const study::ThresholdResult& threshold : map->thresholds) {
    if (!threshold.threshold || threshold.outsideReference == 0) continue;
    marks.push_back({*threshold.threshold, fmt::format("q = {}", threshold.q)});
    if (study::hasSign(map->type))
      marks.push_back({-*threshold.threshold, fmt::format("q = {}", threshold.q)});
  }
  return marks;
}

double total(const std::vector<std::size_t>& counts, std::size_t below, std::size_t above) {
  return static_cast<double>(std::accumulate(counts.begin(), counts.end(), below + above));
}

std::vector<double> asNumbers(const std::vector<std::size_t>& counts, double factor = 1) {
  std::vector<double> numbers;
  for (const std::size_t count : counts) numbers.push_back(factor * static_cast<double>(count));
  return numbers;
}

Chart histogramChart(const MapEvidence& map, const MapResult* result, const EvidencePlace& place,
                     std::size_t index) {
  const study::MapHistogram& histogram = map.histogram;
  const std::string keyword = tav::mapKind(map.type).keyword;
  const std::string from = fmt::format("{}#/Maps/{}/Histogram/", place.file, index);
  const double observed = total(histogram.observed, histogram.observedBelow, histogram.observedAbove);
  const double null = total(histogram.null, histogram.nullBelow, histogram.nullAbove);
  Chart chart{fmt::format("histogram-{}-{}", place.id, keyword),
              "histogram",
              element("strong", keyword) +
                  ": values of the voxels outside the reference, and those of surrogates, which "
                  "nothing relates to any voxel, brought to the same number.",
              {"Value"},
              {"Voxels", "", true},
              histogram.edges,
              from + "Edges",
              {}};
  chart.series = {
      {"Observed", "main", asNumbers(histogram.observed), from + "Observed"},
      {"Surrogates, same number", "null", asNumbers(histogram.null, null > 0 ? observed / null : 0)},
  };
  chart.marks = thresholdMarks(result);
  return chart;
}

Chart searchChart(const MapEvidence& map, const MapResult* result, const EvidencePlace& place,
                  std::size_t index) {
  const study::SearchEvidence& search = map.search;
  const std::string keyword = tav::mapKind(map.type).keyword;
  const std::string from = fmt::format("{}#/Maps/{}/Search/", place.file, index);
  Chart chart{fmt::format("search-{}-{}", place.id, keyword),
              "search",
              element("strong", keyword) +
                  ": the search for its thresholds. A threshold is the magnitude of the last rank "
                  "whose p lies on or under the line of its q.",
              {"Rank by magnitude", "", true},
              {"p", "", true},
              asNumbers(search.ranks),
              from + "Rank",
              {{"p", "main", search.p, from + "P"}}};
  if (result == nullptr) return chart;
  for (const study::ThresholdResult& threshold : result->thresholds) {
    const double perRank = threshold.q / (search.fdrConstant * static_cast<double>(search.voxels));
    chart.series.push_back({fmt::format("bound of q = {}", threshold.q), "bound", {}, "", perRank});
  }
  return chart;
}

}  // namespace

std::vector<Chart> mapCharts(const study::Evidence& evidence, const study::ConditionRecord& condition,
                             const EvidencePlace& place) {
  std::vector<Chart> charts;
  for (std::size_t i = 0; i < evidence.maps.size(); ++i) {
    const MapEvidence& map = evidence.maps[i];
    const MapResult* result = resultOf(condition, map.type);
    if (map.histogram.edges.size() > 1) charts.push_back(histogramChart(map, result, place, i));
    if (!map.search.empty()) charts.push_back(searchChart(map, result, place, i));
  }
  return charts;
}

}  // namespace report
