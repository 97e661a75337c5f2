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

Json seriesJson(const ChartSeries& series) {
  Json values = Json::array();
  for (const double value : series.values)
    values.push_back(std::isfinite(value) ? Json(value) : Json(nullptr));
  return {{"name", series.name}, {"role", series.role}, {"ys", values}};
}

std::string cellOf(double value) {
  return element("td", std::isfinite(value) ? fmt::format("{}", value) : "n/a");
}

std::string head(const std::string& words, const std::string& from) {
  return from.empty() ? element("th", {{"scope", "col"}}, words)
                      : element("th", {{"scope", "col"}, {"data-from", from}}, words);
}

std::string tableOf(const Chart& chart) {
  const std::string unit = chart.x.unit.empty() ? "" : " (" + chart.x.unit + ")";
  std::string rows = head(text(chart.x.label + unit), chart.xsFrom);
  for (const ChartSeries& series : chart.series) rows += head(text(series.name), series.from);
  std::string body;
  for (std::size_t i = 0; i < chart.xs.size(); ++i) {
    std::string row = cellOf(chart.xs[i]);
    for (const ChartSeries& series : chart.series)
      row += i < series.values.size() ? cellOf(series.values[i]) : element("td", "");
    body += element("tr", row);
  }
  return element("table", {{"class", "numbers"}},
                 element("thead", element("tr", rows)) + element("tbody", body));
}

}  // namespace

Json chartJson(const Chart& chart) {
  Json series = Json::array(), marks = Json::array(), spans = Json::array();
  for (const ChartSeries& one : chart.series) series.push_back(seriesJson(one));
  for (const ChartMark& mark : chart.marks) marks.push_back({{"x", mark.x}, {"label", mark.label}});
  for (const ChartSpan& span : chart.spans)
    spans.push_back({{"from", span.from}, {"to", span.to}, {"kind", span.kind}, {"label", span.label}});
  return {{"type", chart.type}, {"x", axisJson(chart.x)}, {"y", axisJson(chart.y)}, {"xs", chart.xs},
          {"series", series},   {"marks", marks},         {"spans", spans}};
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
