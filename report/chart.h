// A chart: a table of numbers for everybody, and how the script draws its columns.
#ifndef TAVMAP_REPORT_CHART_H
#define TAVMAP_REPORT_CHART_H

#include <string>
#include <vector>

#include "formats/json_file.h"

namespace report {

struct ChartSeries {
  std::string name, role;      // how it is drawn: "main", "second", "band-low", "band-high", "null", "bound"
  std::vector<double> values;  // one per x; of histograms one per bin; NaN: none
  std::string from = {};       // where the numbers stand in the outputs; empty: they follow from others
  double perX = 0;             // not 0: a line, this times x, that has no values of its own
};

struct ChartAxis {
  std::string label, unit = {};
  bool isLogarithmic = false;
};

struct ChartMark {  // a vertical line
  double x;
  std::string label;
};

struct ChartSpan {
  double from, to;
  std::string kind, label;  // "interval" or "censored"
};

struct Chart {
  std::string id, type;  // "line", "histogram" (xs are edges), "search"
  std::string caption;   // markup
  ChartAxis x, y;
  std::vector<double> xs;
  std::string xsFrom = {};  // as ChartSeries::from
  std::vector<ChartSeries> series;
  std::vector<ChartMark> marks = {};
  std::vector<ChartSpan> spans = {};
};

// How it is drawn: axes, series by their columns of the table (x is column 0), marks, spans. No numbers of
// its own.
[[nodiscard]] formats::Json chartJson(const Chart& chart);
// A figure with the caption and, folded away, the table, numbers to six digits.
[[nodiscard]] std::string chartFigure(const Chart& chart);

}  // namespace report

#endif
