#include "report/strip_plot.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "report/html.h"

namespace report {
namespace {

constexpr double kLeft = 52, kTop = 12, kStripHeight = 150, kColumn = 110, kBottom = 24;

// Nice steps of an axis: 1, 2 or 5 times a power of ten.
double stepOf(double range) {
  const double power = std::pow(10, std::floor(std::log10(range / 4)));
  for (const double times : {1.0, 2.0, 5.0})
    if (range / (times * power) <= 5) return times * power;
  return 10 * power;
}

struct Axis {
  double low = 0, high = 0;
  [[nodiscard]] double y(double value) const { return kTop + kStripHeight * (high - value) / (high - low); }
};

Axis axisOf(const std::vector<StripPoint>& points) {
  Axis axis;
  for (const StripPoint& point : points) {
    if (std::isnan(point.value)) continue;
    axis.low = std::min(axis.low, point.value);
    axis.high = std::max(axis.high, point.value);
  }
  const double margin = axis.high > axis.low ? 0.06 * (axis.high - axis.low) : 1;
  return {axis.low - margin, axis.high + margin};
}

std::string gridLines(const Axis& axis, double width) {
  const double step = stepOf(axis.high - axis.low);
  std::string svg;
  for (double at = std::ceil(axis.low / step) * step; at <= axis.high; at += step) {
    const bool isZero = std::fabs(at) < step / 2;
    svg += fmt::format(
        "<line x1=\"{}\" x2=\"{:.0f}\" y1=\"{:.1f}\" y2=\"{:.1f}\" stroke=\"currentColor\" "
        "stroke-opacity=\"{}\"/>"
        "<text x=\"{}\" y=\"{:.1f}\" text-anchor=\"end\">{:.4g}</text>",
        kLeft, width, axis.y(at), axis.y(at), isZero ? "0.8" : "0.2", kLeft - 5, axis.y(at) + 3,
        isZero ? 0 : at);
  }
  return svg;
}

// Equal values lie beside each other.
std::string groupOf(const std::vector<const StripPoint*>& members, const Axis& axis, double centre) {
  std::string svg;
  double sum = 0;
  for (std::size_t i = 0; i < members.size(); ++i) {
    const double offset = static_cast<double>(i % 5) * 9 - 18;
    sum += members[i]->value;
    svg += fmt::format(
        "<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"4\" fill=\"currentColor\" fill-opacity=\"0.55\"><title>{}: "
        "{:.4g}"
        "</title></circle>",
        centre + offset, axis.y(members[i]->value), text(members[i]->name), members[i]->value);
  }
  const double mean = axis.y(sum / static_cast<double>(members.size()));
  return svg + fmt::format(
                   "<line x1=\"{:.1f}\" x2=\"{:.1f}\" y1=\"{:.1f}\" y2=\"{:.1f}\" stroke=\"currentColor\" "
                   "stroke-width=\"2.5\"/>",
                   centre - 32, centre + 32, mean, mean);
}

}  // namespace

std::string stripPlot(const std::vector<StripPoint>& points, const std::string& unit,
                      const std::string& label) {
  std::map<std::string, std::vector<const StripPoint*>> groups;
  for (const StripPoint& point : points)
    if (!std::isnan(point.value)) groups[point.group].push_back(&point);
  const Axis axis = axisOf(points);
  const double width = kLeft + kColumn * static_cast<double>(std::max<std::size_t>(groups.size(), 1));
  std::string svg = gridLines(axis, width);
  double centre = kLeft + kColumn / 2;
  for (const auto& [group, members] : groups) {
    svg += groupOf(members, axis, centre);
    svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"middle\">{}</text>", centre,
                       kTop + kStripHeight + 15,
                       text(group.empty() ? fmt::format("n = {}", members.size())
                                          : fmt::format("{} ({})", group, members.size())));
    centre += kColumn;
  }
  svg += fmt::format("<text x=\"{}\" y=\"8\" text-anchor=\"start\">{}</text>", 2, text(unit));
  return element("svg",
                 {{"class", "strip"},
                  {"viewBox", fmt::format("0 0 {:.0f} {:.0f}", width, kTop + kStripHeight + kBottom)},
                  {"role", "img"},
                  {"aria-label", label}},
                 "<g font-size=\"10\" font-family=\"sans-serif\" fill=\"currentColor\">" + svg + "</g>");
}

}  // namespace report
