#include "report/chart.h"

#include <fmt/core.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "report/html.h"

namespace report {
namespace {

using formats::Json;

Json axisJson(const ChartAxis& axis) {
  return {{"label", axis.label}, {"unit", axis.unit}, {"log", axis.isLogarithmic}};
}

bool hasColumn(const ChartSeries& series) {
  return series.perX == 0;
}

Json seriesJson(const Chart& chart) {
  Json list = Json::array();
  int column = 0;
  for (const ChartSeries& series : chart.series) {
    Json json = {{"name", series.name}, {"role", series.role}};
    if (hasColumn(series))
      json["column"] = ++column;
    else
      json["perX"] = series.perX;
    list.push_back(std::move(json));
  }
  return list;
}

// Cells and rows end where the next one begins.
std::string cellOf(double value) {
  return std::isfinite(value) ? fmt::format("<td>{:.6g}", value) : "<td>n/a";
}

std::string head(const std::string& words, const std::string& from) {
  return from.empty() ? element("th", {{"scope", "col"}}, words)
                      : element("th", {{"scope", "col"}, {"data-from", from}}, words);
}

std::string rowOf(const Chart& chart, std::size_t i) {
  std::string row = "<tr>" + cellOf(chart.xs[i]);
  for (const ChartSeries& series : chart.series)
    if (hasColumn(series)) row += i < series.values.size() ? cellOf(series.values[i]) : "<td>";
  return row;
}

std::string tableOf(const Chart& chart) {
  const std::string unit = chart.x.unit.empty() ? "" : " (" + chart.x.unit + ")";
  std::string heads = head(text(chart.x.label + unit), chart.xsFrom), body;
  for (const ChartSeries& series : chart.series)
    if (hasColumn(series)) heads += head(text(series.name), series.from);
  for (std::size_t i = 0; i < chart.xs.size(); ++i) body += rowOf(chart, i);
  return element("table", {{"class", "numbers"}},
                 element("thead", element("tr", heads)) + element("tbody", body));
}

}  // namespace

Json chartJson(const Chart& chart) {
  Json marks = Json::array(), spans = Json::array();
  for (const ChartMark& mark : chart.marks) marks.push_back({{"x", mark.x}, {"label", mark.label}});
  for (const ChartSpan& span : chart.spans)
    spans.push_back({{"from", span.from}, {"to", span.to}, {"kind", span.kind}, {"label", span.label}});
  return {{"type", chart.type},          {"x", axisJson(chart.x)}, {"y", axisJson(chart.y)},
          {"series", seriesJson(chart)}, {"marks", marks},         {"spans", spans}};
}

std::string chartFigure(const Chart& chart) {
  return element("figure", {{"class", "chart"}, {"data-chart", chart.id}, {"id", "chart-" + chart.id}},
                 element("figcaption", chart.caption) +
                     element("details", element("summary", "Numbers") +
                                            element("div", {{"class", "table-scroll"}, {"tabindex", "0"}},
                                                    tableOf(chart)))) +
         "\n";
}

}  // namespace report
