#include <fmt/core.h>

#include <algorithm>

#include "report/connectome_outputs.h"
#include "report/encoding.h"
#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"

namespace report {
namespace {

constexpr int kSide = 640, kNames = 110, kBar = 40;

// Closed, as images that stand alone and what follows them in a page need it.
std::string shape(std::string_view tag, Attributes attributes) {
  return element(tag, attributes, "");
}

struct Letters {
  const char* anchor;
  double size = 13;
  bool isUpwards = false;
};

std::string label(double x, double y, const Letters& letters, const std::string& words) {
  return element("text",
                 {{"transform",
                   fmt::format("translate({:.1f} {:.1f}){}", x, y, letters.isUpwards ? " rotate(-90)" : "")},
                  {"text-anchor", letters.anchor},
                  {"font-size", fmt::format("{:.3g}", letters.size)},
                  {"fill", "currentColor"}},
                 text(words));
}

std::string line(double x1, double y1, double x2, double y2) {
  const auto number = [](double value) { return fmt::format("{:.1f}", value); };
  return shape("line", {{"x1", number(x1)},
                        {"y1", number(y1)},
                        {"x2", number(x2)},
                        {"y2", number(y2)},
                        {"stroke", "#bbb"},
                        {"stroke-width", "0.7"}});
}

std::string groupMarks(const render::MatrixPicture& picture) {
  std::string marks;
  const double unit = static_cast<double>(kSide) / static_cast<double>(picture.size);
  for (const render::MatrixGroup& group : picture.groups) {
    const double begin = unit * static_cast<double>(group.first), end = unit * static_cast<double>(group.end);
    if (picture.names.empty()) marks += label(kNames - 6, (begin + end) / 2 + 4, {"end"}, group.name);
    if (group.end == picture.size) continue;
    marks += line(kNames + end, 0, kNames + end, kSide) + line(kNames, end, kNames + kSide, end);
  }
  return marks;
}

std::string nameMarks(const render::MatrixPicture& picture) {
  std::string marks;
  const double unit =
      static_cast<double>(kSide) / static_cast<double>(std::max<std::size_t>(1, picture.size));
  const double size = render::nameSize(unit);
  for (std::size_t row = 0; row < picture.names.size(); ++row) {
    const double middle = unit * (static_cast<double>(row) + 0.5) + size / 3;
    const std::string name = render::shortName(picture.names[row]);
    marks += label(kNames - 6, middle, {"end", size}, name);
    marks += label(kNames + middle, kSide + 6, {"end", size, true}, name);
  }
  return marks;
}

// What lies below the cells before the bar of colours.
int heightOfNames(const render::MatrixPicture& picture) {
  return picture.names.empty() ? 0 : kNames;
}

std::string hexOf(const render::Rgb& colour) {
  const auto byte = [](double share) { return static_cast<int>(share * 255 + 0.5); };
  return fmt::format("#{:02x}{:02x}{:02x}", byte(colour.red), byte(colour.green), byte(colour.blue));
}

std::string colourBar(const render::MatrixPicture& picture) {
  constexpr int kSteps = 64;
  bool hasNegative = false;
  for (const double value : picture.values) hasNegative = hasNegative || value < 0;
  const double least = hasNegative ? -picture.full : 0;
  const int top = kSide + heightOfNames(picture);
  std::string bar;
  for (int i = 0; i < kSteps; ++i) {
    const double value = least + (picture.full - least) * (i + 0.5) / kSteps;
    bar += shape("rect", {{"x", fmt::format("{:.1f}", kNames + i * static_cast<double>(kSide) / kSteps)},
                          {"y", std::to_string(top + 8)},
                          {"width", fmt::format("{:.1f}", static_cast<double>(kSide) / kSteps + 0.5)},
                          {"height", "10"},
                          {"fill", hexOf(render::cellColour(value, picture.full, true))}});
  }
  return bar + label(kNames, top + 34, {"start"}, fmt::format("{:.3g}", least)) +
         label(kNames + kSide, top + 34, {"end"}, fmt::format("{:.3g} or more", picture.full));
}

// Letters take the colour of the page's; the matrix has a ground of its own.
std::string matrixSvg(const render::MatrixPicture& picture) {
  const std::string pixels = shape("image", {{"x", std::to_string(kNames)},
                                             {"y", "0"},
                                             {"width", std::to_string(kSide)},
                                             {"height", std::to_string(kSide)},
                                             {"preserveAspectRatio", "none"},
                                             {"style", "image-rendering: pixelated"},
                                             {"href", pngUri(render::matrixPixels(picture))}});
  return element(
      "svg",
      {{"xmlns", "http://www.w3.org/2000/svg"},
       {"viewBox", fmt::format("0 0 {} {}", kNames + kSide + 4, kSide + heightOfNames(picture) + kBar)},
       {"role", "img"},
       {"font-family", "sans-serif"},
       {"aria-label", picture.title + ", " + picture.caption}},
      element("title", text(picture.title)) + pixels + groupMarks(picture) + nameMarks(picture) +
          colourBar(picture));
}

// In a file of its own there is no page to take the colour of letters from.
std::string alone(std::string svg) {
  const std::string style =
      "<style>svg{color:#222}@media(prefers-color-scheme:dark){svg{color:#ddd}}</style>";
  return svg.insert(svg.find('>') + 1, style);
}

}  // namespace

std::string matrixFigure(const render::MatrixPicture& picture, const std::string& words,
                         const std::string& stem, Figures& figures) {
  const std::string svg = matrixSvg(picture);
  figures.emplace_back(stem + ".svg", alone(svg));
  figures.emplace_back(stem + ".png", render::drawMatrix(picture, render::cellPixels(picture.size)));
  return element("figure", {{"class", "matrix"}}, svg + element("figcaption", words));
}

namespace {

std::string measureFigure(const ConnectomeOutputs& outputs, std::size_t condition, std::size_t measure,
                          Figures& figures) {
  const render::MatrixPicture picture = measurePicture(outputs, condition, measure);
  const std::string& file = outputs.record.conditions[condition].measures[measure].file;
  return matrixFigure(picture,
                      text(picture.title) +
                          ". Rows are sources, columns targets. Full colour: passes at the largest q; "
                          "faint: does not. Grey: nothing.",
                      file.substr(0, file.rfind('.')), figures);
}

}  // namespace

std::string connectomeMatrices(const ConnectomeOutputs& outputs, Figures& figures) {
  std::string html;
  for (std::size_t condition = 0; condition < outputs.record.conditions.size(); ++condition) {
    html += element("h3", name(outputs.record.conditions[condition].name));
    for (std::size_t measure = 0; measure < outputs.record.conditions[condition].measures.size(); ++measure)
      html += measureFigure(outputs, condition, measure, figures);
  }
  const std::string order = outputs.record.networks.empty()
                                ? "Regions lie in clusters of their instantaneous influence."
                                : "Regions lie by network.";
  return section("matrices", "part", 2, "Matrices", element("p", order) + html);
}

}  // namespace report
