#include "report/table_charts.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <numeric>

#include "formats/table.h"
#include "report/html.h"

namespace report {
namespace {

constexpr const char* kCourses = "_desc-reference_timeseries.tsv";

std::vector<double> columnOf(const formats::Table& table, std::size_t column) {
  std::vector<double> values;
  for (std::size_t row = 0; row < table.rows(); ++row)
    values.push_back(table.number(row, column).value_or(std::numeric_limits<double>::quiet_NaN()));
  return values;
}

std::string fromColumn(const std::string& file, const std::string& column) {
  return fmt::format("{}#/{}", file, column);
}

// Of the rows over all references and conditions.
std::vector<double> totalsOf(const formats::Table& table, const char* column) {
  const std::size_t model = table.require("model"), wanted = table.require(column);
  std::vector<double> values;
  for (std::size_t row = 0; row < table.rows(); ++row)
    if (table.cell(row, model) == "total") values.push_back(table.number(row, wanted).value_or(0));
  return values;
}

std::string fromTotals(const std::string& file, const char* column) {
  return fmt::format("{}#model=total/{}", file, column);
}

std::string coursesFileOf(const ReferenceOutputs& reference) {
  for (const auto& [file, size] : reference.record.files)
    if (file.ends_with(kCourses)) return file;
  return "";
}

bool isEverything(const study::RunRecord& run) {
  return run.intervals.size() == 1 && run.intervals[0].first == 1 && run.intervals[0].last == run.volumes;
}

// Intervals of all conditions, by the name of the condition.
std::vector<ChartSpan> intervalsOf(const study::Record& record, const std::string& runName) {
  std::vector<ChartSpan> spans;
  for (const study::ConditionRecord& condition : record.conditions) {
    for (const study::RunRecord& run : condition.runs) {
      if (run.run != runName || isEverything(run)) continue;
      for (const study::VolumeRange& range : run.intervals)
        spans.push_back({range.first - 0.5, range.last + 0.5, "interval", "condition " + condition.name});
    }
  }
  return spans;
}

Chart courseChart(const ReferenceOutputs& reference, const formats::Table& table, const std::string& file,
                  std::size_t column, const std::string& id) {
  const std::string& run = table.columns()[column];
  Chart chart{id,
              "line",
              fmt::format("Run {}: the reference's course after preparation.", name(run)),
              {"Volume"},
              {"Mean of the region"},
              std::vector<double>(table.rows()),
              "",
              {{reference.record.reference, "main", columnOf(table, column), fromColumn(file, run)}}};
  std::iota(chart.xs.begin(), chart.xs.end(), 1.0);
  chart.spans = intervalsOf(reference.record, run);
  return chart;
}

}  // namespace

std::vector<Chart> courseCharts(const StudyOutputs& outputs, std::size_t reference) {
  const std::string file = coursesFileOf(outputs.references[reference]);
  std::vector<Chart> charts;
  if (file.empty() || !std::filesystem::exists(outputs.path(file))) return charts;
  const formats::Table table = formats::Table::read(outputs.path(file));
  for (std::size_t column = 0; column < table.columns().size(); ++column)
    charts.push_back(courseChart(outputs.references[reference], table, file, column,
                                 fmt::format("course-{}-{}", reference, column)));
  return charts;
}

std::optional<Chart> orderChart(const StudyOutputs& outputs) {
  const std::string file = outputs.prefix + "_desc-order_timeseries.tsv";
  if (!std::filesystem::exists(outputs.path(file))) return std::nullopt;
  const formats::Table table = formats::Table::read(outputs.path(file));
  Chart chart{"order",
              "line",
              "Criteria of the model order, means over references and conditions. The lowest value of the "
              "chosen criterion "
              "decides.",
              {"Order"},
              {"Criterion"},
              totalsOf(table, "order"),
              fromTotals(file, "order"),
              {{"BIC", "main", totalsOf(table, "bic"), fromTotals(file, "bic")},
               {"AIC", "second", totalsOf(table, "aic"), fromTotals(file, "aic")},
               {"HQC", "null", totalsOf(table, "hqc"), fromTotals(file, "hqc")}}};
  return chart;
}

}  // namespace report
