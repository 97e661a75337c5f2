// The values of participants at one place, group beside group, as SVG.
#ifndef TAVMAP_REPORT_STRIP_PLOT_H
#define TAVMAP_REPORT_STRIP_PLOT_H

#include <string>
#include <vector>

namespace report {

struct StripPoint {
  std::string name, group;  // who; the group is empty where there are none
  double value = 0;         // NaN: is not drawn
};

// Points, a line at the mean of each group and one at 0. label: what a person who cannot see it is told;
// unit: of the values.
[[nodiscard]] std::string stripPlot(const std::vector<StripPoint>& points, const std::string& unit,
                                    const std::string& label);

}  // namespace report

#endif
