// Charts of the tables that stand beside the records.
#ifndef TAVMAP_REPORT_TABLE_CHARTS_H
#define TAVMAP_REPORT_TABLE_CHARTS_H

#include <optional>
#include <vector>

#include "report/chart.h"
#include "report/study_outputs.h"

namespace report {

// The course of a reference in each run, with the intervals of its first condition that uses the run. Throws
// formats::FileError.
[[nodiscard]] std::vector<Chart> courseCharts(const StudyOutputs& outputs, std::size_t reference);

// The criteria of the model order; unset when the order was not chosen by one.
[[nodiscard]] std::optional<Chart> orderChart(const StudyOutputs& outputs);

}  // namespace report

#endif
