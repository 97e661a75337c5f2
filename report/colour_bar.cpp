#include <fmt/core.h>

#include <cmath>

#include "report/html.h"
#include "report/mosaic.h"

namespace report {
namespace {

constexpr double kBar = 120, kHeight = 12, kGap = 14;

std::string hex(const render::Rgb& colour) {
  return fmt::format("#{:02x}{:02x}{:02x}", std::lround(255 * colour.red), std::lround(255 * colour.green),
                     std::lround(255 * colour.blue));
}

// The bar of one sign from x on, the strongest colours outwards.
std::string bar(const render::ColourScale& scale, double x, bool isReversed) {
  constexpr int kSteps = 24;
  std::string svg;
  for (int step = 0; step < kSteps; ++step) {
    const double share = static_cast<double>(isReversed ? kSteps - 1 - step : step) / (kSteps - 1);
    svg += fmt::format("<rect x=\"{:.2f}\" y=\"0\" width=\"{:.2f}\" height=\"{}\" fill=\"{}\"/>",
                       x + step * kBar / kSteps, kBar / kSteps + 0.3, kHeight,
                       hex(render::colourAt(scale, share)));
  }
  return svg;
}

std::string number(double x, double value, const char* anchor) {
  return fmt::format("<text x=\"{:.2f}\" y=\"{}\" text-anchor=\"{}\">{:.3g}</text>", x, kHeight + 11, anchor,
                     value);
}

std::string numbersOf(double x, double low, double high, bool isReversed) {
  return isReversed ? number(x, -high, "start") + number(x + kBar, -low, "end")
                    : number(x, low, "start") + number(x + kBar, high, "end");
}

std::string barLabel(const OverlayScale& scale, double low, const std::string& unit) {
  return fmt::format("Colours from {:.3g} to {:.3g}{}; {}", low, scale.full,
                     scale.hasSign ? ", and the same with a minus sign" : "", unit);
}

}  // namespace

// Without a threshold nothing is in full colour, and the bar has the one faint colour that the picture has.
std::string colourBar(const OverlayScale& scale, const std::string& unit) {
  if (!scale.threshold) return "";
  const auto low = static_cast<double>(*scale.threshold), high = static_cast<double>(scale.full);
  const double start = scale.hasSign ? kBar + kGap : 0;
  std::string content;
  if (scale.hasSign) content += bar(render::coldScale(), 0, true) + numbersOf(0, low, high, true);
  content += bar(render::warmScale(), start, false) + numbersOf(start, low, high, false);
  return element("svg",
                 {{"class", "colour-bar"},
                  {"viewBox", fmt::format("0 0 {} {}", start + kBar, kHeight + 14)},
                  {"width", fmt::format("{}", start + kBar)},
                  {"role", "img"},
                  {"aria-label", barLabel(scale, low, unit)}},
                 fmt::format("<g font-size=\"10\" fill=\"currentColor\">{}</g>", content));
}

}  // namespace report
