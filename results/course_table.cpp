#include "results/course_table.h"

#include <algorithm>
#include <charconv>

#include "results/map_findings.h"

namespace study {
namespace {

std::string cell(const CourseColumn& column, int volume) {
  const int at = volume - column.dropped;
  const bool known = column.course != nullptr && at >= 0 && at < static_cast<int>(column.course->size());
  if (!known) return "n/a";
  const auto stored = static_cast<double>((*column.course)[static_cast<std::size_t>(at)]);
  const double value = (stored - column.shift) / column.scale;
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, withDigitsOf(static_cast<float>(value))).ptr};
}

}  // namespace

std::string courseTable(const std::vector<CourseColumn>& columns) {
  std::string table;
  int rows = 0;
  for (const CourseColumn& column : columns) {
    table += (table.empty() ? "" : "\t") + column.run;
    rows = std::max(rows, column.volumes);
  }
  table += "\n";
  for (int row = 0; row < rows; ++row) {
    for (std::size_t c = 0; c < columns.size(); ++c) table += (c > 0 ? "\t" : "") + cell(columns[c], row);
    table += "\n";
  }
  return table;
}

}  // namespace study
