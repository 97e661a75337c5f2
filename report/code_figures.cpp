#include "report/code_figures.h"

#include <fmt/core.h>

#include <array>

#include "report/html.h"
#include "report/mosaic.h"
#include "report/quotes.h"
#include "report/sections.h"

namespace report {
namespace {

using render::Rgba;

// What a kind of code looks like, by code; transparent ones stand in no legend.
struct CodePicture {
  const char* id;
  std::string caption, label;  // markup; plain text
  std::string file, place;     // the image, and where the record counts its voxels by the codes' names
  const std::vector<std::uint8_t>& codes;
  std::vector<Rgba> colours;
  std::vector<std::string> names;  // as the record has them
};

std::string swatch(const Rgba& colour) {
  return element("span",
                 {{"class", "code-swatch"},
                  {"style", fmt::format("background:rgb({},{},{})", colour.red, colour.green, colour.blue)}},
                 "");
}

std::string legendOf(const CodePicture& picture, const Quotes& quotes) {
  std::string items;
  for (std::size_t code = 0; code < picture.names.size(); ++code) {
    if (picture.colours[code].alpha == 0) continue;
    items += element("li", swatch(picture.colours[code]) + text(picture.names[code]) + ": " +
                               quotes.number(fmt::format("{}/{}", picture.place, picture.names[code])) +
                               " voxels");
  }
  return element("ul", {{"class", "code-legend"}}, items);
}

MapFigure figureOf(const StudyOutputs& outputs, const PageGrid& grid, const std::vector<float>& underlay,
                   const UnderlaySheet& sheet, const ConditionView& view, const CodePicture& picture) {
  const std::string id = placeId("mosaic", view.reference, view.condition) + "-" + picture.id;
  const MosaicMap drawn{id,
                        [&picture](std::size_t voxel) { return picture.colours[picture.codes[voxel]]; },
                        {{view.region, "#0ff"}}};
  const std::string svg = mosaic(grid, drawn, mosaicSlices(grid, underlay, {}), picture.label);
  const ReferenceOutputs& reference = outputs.references[view.reference];
  const Quotes quotes =
      Quotes(reference.json, reference.file).at(fmt::format("/Conditions/{}", view.condition));
  return {element("figure", {{"class", "mosaic"}, {"id", id}},
                  element("figcaption", picture.caption) + svg + legendOf(picture, quotes)) +
              "\n",
          pictureFileOf(picture.file), sheet.standalone(svg, id)};
}

std::vector<std::string> directionNames() {
  std::vector<std::string> names;
  for (std::size_t code = 0; code < study::kDirectionCodes; ++code)
    names.push_back(study::directionName(static_cast<study::DirectionCode>(code)));
  return names;
}

std::vector<std::string> statusNames() {
  std::vector<std::string> names;
  for (std::size_t code = 0; code < study::kStatusCodes; ++code)
    names.push_back(study::statusName(static_cast<study::StatusCode>(code)));
  return names;
}

}  // namespace

MapFigure directionFigure(const StudyOutputs& outputs, const PageGrid& grid,
                          const std::vector<float>& underlay, const UnderlaySheet& sheet,
                          const ConditionView& view) {
  constexpr Rgba kNothing{}, kReference{252, 78, 42, 255}, kVoxel{66, 146, 198, 255},
      kUnsupported{150, 150, 150, 200}, kNoVerdict{255, 255, 0, 255};
  return figureOf(
      outputs, grid, underlay, sheet, view,
      {"direction",
       element("strong", "Direction") + ": the voxels that pass DTAV, tested with reversed time. A true lag "
                                        "that comes from blood vessels alone is not caught.",
       "Direction of the voxels that pass DTAV, tested with reversed time. Axial slices from below to above, "
       "the patient's left on the left.",
       view.record->direction.file,
       "/Direction/Voxels",
       view.directions,
       {kNothing, kReference, kVoxel, kUnsupported, kNoVerdict},
       directionNames()});
}

MapFigure statusFigure(const StudyOutputs& outputs, const PageGrid& grid, const std::vector<float>& underlay,
                       const UnderlaySheet& sheet, const ConditionView& view) {
  constexpr Rgba kNothing{}, kComputed{0, 158, 115, 70}, kBelow{230, 159, 0, 220},
      kIllDefined{213, 94, 0, 255}, kReference{86, 180, 233, 200}, kNotFinite{204, 121, 167, 255};
  return figureOf(outputs, grid, underlay, sheet, view,
                  {"status",
                   element("strong", "Status") + ": why each voxel has the value that it has.",
                   "Status of every voxel. Axial slices from below to above, the patient's left on the left.",
                   view.record->statusFile,
                   "/Voxels",
                   view.status,
                   {kNothing, kComputed, kBelow, kIllDefined, kReference, kNotFinite},
                   statusNames()});
}

}  // namespace report
