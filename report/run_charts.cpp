#include <fmt/core.h>

#include <numeric>

#include "report/evidence_charts.h"
#include "report/html.h"

namespace report {
namespace {

using study::RunEvidence;

struct RunPlace {
  std::string from;  // "FILE#/Runs/0/"
  std::string id;    // "0-1-0"
};

Chart spectrumChart(const RunEvidence& run, const RunPlace& place) {
  const study::SpectrumEvidence& spectrum = run.spectrum;
  const std::string from = place.from + "Spectrum/";
  Chart chart{
      "spectrum-" + place.id,
      "line",
      fmt::format(
          "Run {}: where in frequency the reference's variance lies, over volumes {} to {}, and the band of "
          "95 of 100 surrogates.",
          name(run.run), spectrum.interval.first, spectrum.interval.last),
      {"Frequency", "Hz"},
      {"Share of the variance", "", true},
      spectrum.hertz,
      from + "Frequency",
      {{"Reference", "main", spectrum.reference, from + "Reference"}}};
  if (spectrum.low.empty()) return chart;
  chart.series.push_back({"Surrogates, 2.5 %", "band-low", spectrum.low, from + "SurrogateLow"});
  chart.series.push_back({"Surrogates, median", "null", spectrum.median, from + "SurrogateMedian"});
  chart.series.push_back({"Surrogates, 97.5 %", "band-high", spectrum.high, from + "SurrogateHigh"});
  return chart;
}

std::vector<double> lagsOf(std::size_t count) {
  std::vector<double> lags(count);
  std::iota(lags.begin(), lags.end(), 1.0);
  return lags;
}

std::string whiteness(const study::ResidualEvidence& residuals) {
  if (!residuals.ljungBox || !residuals.p) return "";
  return fmt::format(" Ljung-Box {:.4g} with {} degrees of freedom, p {}.", *residuals.ljungBox,
                     residuals.degreesOfFreedom,
                     *residuals.p < 0.001 ? "&lt; 0.001" : fmt::format("= {:.3f}", *residuals.p));
}

Chart residualChart(const RunEvidence& run, const RunPlace& place) {
  const study::ResidualEvidence& residuals = run.residuals;
  const std::string from = place.from + "Residuals/";
  std::vector<double> low, high;
  for (const double expected : residuals.expected) {
    low.push_back(expected - residuals.bound);
    high.push_back(expected + residuals.bound);
  }
  return {"residuals-" + place.id,
          "line",
          fmt::format("Run {}: what the reference's own model leaves. Correlations of its residuals outside "
                      "the band speak "
                      "for a higher order.{}",
                      name(run.run), whiteness(residuals)),
          {"Lag", "volumes"},
          {"Autocorrelation"},
          lagsOf(residuals.correlations.size()),
          "",
          {{"Residuals", "main", residuals.correlations, from + "Autocorrelation"},
           {"Band of 95 % of white errors, low", "band-low", low},
           {"Band, high", "band-high", high},
           {"Expected of white errors", "null", residuals.expected, from + "Expected"}}};
}

// One span per stretch of neighbouring volumes.
std::vector<ChartSpan> censoredSpans(const std::vector<int>& volumes) {
  std::vector<ChartSpan> spans;
  for (const int volume : volumes) {
    if (!spans.empty() && spans.back().to >= volume - 0.5)
      spans.back().to = volume + 0.5;
    else
      spans.push_back({volume - 0.5, volume + 0.5, "censored", "censored"});
  }
  return spans;
}

Chart motionChart(const RunEvidence& run, const RunPlace& place) {
  Chart chart{"motion-" + place.id,
              "line",
              fmt::format("Run {}: motion, {}.", name(run.run), text(run.motion.source)),
              {"Volume"},
              {"Frame-wise displacement", "mm"},
              lagsOf(run.motion.displacement.size()),
              "",
              {{"Displacement", "main", run.motion.displacement, place.from + "Motion"}}};
  chart.spans = censoredSpans(run.censoredVolumes);
  for (const int spike : run.spikes) chart.marks.push_back({static_cast<double>(spike), "spike"});
  return chart;
}

}  // namespace

std::vector<Chart> runCharts(const study::Evidence& evidence, const EvidencePlace& place) {
  std::vector<Chart> charts;
  for (std::size_t i = 0; i < evidence.runs.size(); ++i) {
    const RunEvidence& run = evidence.runs[i];
    const RunPlace at{fmt::format("{}#/Runs/{}/", place.file, i), fmt::format("{}-{}", place.id, i)};
    if (!run.spectrum.empty()) charts.push_back(spectrumChart(run, at));
    if (!run.residuals.empty()) charts.push_back(residualChart(run, at));
    if (!run.motion.empty()) charts.push_back(motionChart(run, at));
  }
  return charts;
}

std::vector<Chart> sliceCharts(const study::Evidence& evidence, const EvidencePlace& place) {
  Chart chart{"slices-" + place.id,
              "line",
              "Voxels without a value, by slice and reason.",
              {"Slice (k, from 0)"},
              {"Voxels"},
              {},
              "",
              {}};
  for (const study::StatusCode code :
       {study::StatusCode::kBelowInclusion, study::StatusCode::kIllDefined, study::StatusCode::kNotFinite}) {
    const std::vector<std::size_t>& counts = evidence.voxelsBySlice[static_cast<std::size_t>(code)];
    if (std::accumulate(counts.begin(), counts.end(), std::size_t{0}) == 0) continue;
    chart.series.push_back({study::statusName(code),
                            chart.series.empty() ? "main" : "second",
                            {counts.begin(), counts.end()},
                            fmt::format("{}#/VoxelsBySlice/{}", place.file, study::statusName(code))});
    chart.xs.resize(counts.size());
    std::iota(chart.xs.begin(), chart.xs.end(), 0.0);
  }
  if (chart.series.empty()) return {};
  return {chart};
}

}  // namespace report
