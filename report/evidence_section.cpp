#include "report/evidence_section.h"

#include <fmt/core.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "report/evidence_charts.h"
#include "report/html.h"
#include "report/sections.h"
#include "report/table_charts.h"
#include "results/evidence_json.h"

namespace report {
namespace {

class ChartList {
 public:
  explicit ChartList(formats::Json& data) : data_(data) {}
  void add(const Chart& chart) {
    data_[chart.id] = chartJson(chart);
    html_ += chartFigure(chart);
  }
  void add(const std::vector<Chart>& charts) {
    for (const Chart& chart : charts) add(chart);
  }
  void add(const std::string& html) { html_ += html; }
  [[nodiscard]] const std::string& html() const { return html_; }

 private:
  formats::Json& data_;
  std::string html_;
};

std::string predictabilityWords(const study::Evidence& evidence) {
  std::string html;
  for (const study::RunEvidence& run : evidence.runs) {
    if (run.predictability.empty()) continue;
    html += element(
        "p",
        fmt::format("Run {}: its own past predicts {:.0f} % of the reference's variance, and {:.0f} % of "
                    "the median voxel's of {} looked at.",
                    name(run.run), 100 * run.predictability.reference, 100 * run.predictability.medianVoxel,
                    run.predictability.voxels));
  }
  return html;
}

std::string conditionEvidence(const StudyOutputs& outputs, std::size_t r, std::size_t c,
                              formats::Json& data) {
  const study::ConditionRecord& condition = outputs.references[r].record.conditions[c];
  const std::string& file = condition.evidenceFile;
  if (file.empty() || !std::filesystem::exists(outputs.path(file))) return "";
  const study::Evidence evidence = study::readEvidenceFile(outputs.path(file));
  const EvidencePlace place{file, viewId(r, c)};
  ChartList charts(data);
  charts.add(mapCharts(evidence, condition, place));
  charts.add(predictabilityWords(evidence));
  charts.add(runCharts(evidence, place));
  const std::vector<Chart> slices = sliceCharts(evidence, place);
  charts.add(slices);
  if (slices.empty()) charts.add(element("p", "Every voxel that was looked at has a value."));
  return section(placeId("evidence", r, c), "condition", 4, "Condition " + name(condition.name),
                 charts.html());
}

std::string referenceEvidence(const StudyOutputs& outputs, std::size_t r, formats::Json& data) {
  ChartList charts(data);
  charts.add(courseCharts(outputs, r));
  for (std::size_t c = 0; c < outputs.references[r].record.conditions.size(); ++c)
    charts.add(conditionEvidence(outputs, r, c, data));
  return section(placeId("evidence", r), "reference", 3, name(outputs.references[r].record.reference),
                 charts.html());
}

}  // namespace

EvidenceSection evidenceSection(const StudyOutputs& outputs) {
  EvidenceSection result{"", formats::Json::object()};
  if (outputs.references.empty()) return result;
  ChartList shared(result.charts);
  if (const auto order = orderChart(outputs)) shared.add(*order);
  for (std::size_t r = 0; r < outputs.references.size(); ++r)
    shared.add(referenceEvidence(outputs, r, result.charts));
  result.html = section("evidence", "part", 2, "Evidence", shared.html());
  return result;
}

}  // namespace report
