#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "formats/nifti.h"
#include "group/group_names.h"
#include "report/glass_brain.h"
#include "report/group_sections.h"
#include "report/group_view.h"
#include "report/html.h"
#include "report/map_figures.h"
#include "report/mosaic.h"
#include "report/quotes.h"
#include "report/sections.h"
#include "report/underlay_sheet.h"
#include "results/map_words.h"

namespace report {
namespace {

struct GroupScene {
  GroupScene(const GroupOutputs& groupOutputs, const formats::ImageHeader& header)
      : outputs(groupOutputs),
        grid(header),
        underlay(readGroupUnderlay(groupOutputs, grid)),
        sheet(grid, grid.upright(greyLevels(underlay.values, underlay.brightness))) {}
  const GroupOutputs& outputs;
  PageGrid grid;
  GroupUnderlay underlay;
  UnderlaySheet sheet;
};

std::vector<int> slicesOf(const GroupScene& scene, const TestedCell& cell) {
  constexpr std::size_t kMostShownPeaks = 5;
  std::vector<int> wanted;
  for (const study::GroupPeak& peak : cell.record.peaks) {
    const int slice = scene.grid.view().position(peak.voxel)[2];
    if (wanted.size() < kMostShownPeaks && std::find(wanted.begin(), wanted.end(), slice) == wanted.end())
      wanted.push_back(slice);
  }
  return mosaicSlices(scene.grid, scene.underlay.values, wanted);
}

std::string foundWords(const TestedCell& cell) {
  const Quotes quotes(cell.json, cell.file);
  const bool isEnhanced = cell.record.inference.enhance;
  const std::string way = isEnhanced ? "/VoxelsByEnhancement" : "/VoxelsByMaximum";
  return fmt::format(
      "Full colour: {} voxels above and {} below with a family-wise p of {} or less {}; what falls short is "
      "faint. White "
      "line: clusters that pass by their mass.",
      quotes.number(way + "/Positive"), quotes.number(way + "/Negative"), cell.record.inference.level,
      isEnhanced ? "by threshold-free cluster enhancement" : "by the maximum of the map");
}

std::string signWordsOf(const study::GroupTestRecord& record) {
  if (!record.isTwoSided)
    return "Red to yellow: more than the voxels' own null values. Less counts for nothing.";
  const study::Sides sides = study::sidesOf(record.contrast);
  if (!sides.empty())
    return fmt::format("Red to yellow: larger in {}. Blue: larger in {}.", name(sides.first),
                       name(sides.second));
  if (record.contrast != "mean")
    return fmt::format("Red to yellow: it grows with {0}. Blue: it falls with {0}.", name(record.contrast));
  return "Red to yellow: above 0. Blue: below 0.";
}

std::string mosaicFigure(const GroupScene& scene, const TestedCell& cell, const GroupView& view,
                         std::size_t index, GroupMaps& maps) {
  const std::string id = cellId("mosaic", index), title = cellTitle(cell.record);
  MosaicMap drawn{id, [&view](std::size_t voxel) { return view.colour(voxel); }, {}};
  if (std::find(view.clusters.begin(), view.clusters.end(), 1) != view.clusters.end())
    drawn.outlines.push_back({view.clusters, "#fff"});
  const std::string svg =
      mosaic(scene.grid, drawn, slicesOf(scene, cell),
             title + ": t of the group. Axial slices from below to above, the patient's left on the left.");
  maps.pictures.emplace_back(pictureFileOf(cell.record.image(study::group_image::kT)),
                             scene.sheet.standalone(svg, id));
  const std::string bar = element("div", {{"class", "scale"}},
                                  colourBar(view.scale, "t") + element("small", "t of the contrast"));
  return element("figure", {{"class", "mosaic"}, {"id", id}},
                 element("figcaption",
                         element("strong", "t") + ". " + signWordsOf(cell.record) + " " + foundWords(cell)) +
                     svg + bar);
}

std::string glassFigure(const GroupScene& scene, const TestedCell& cell, const GroupView& view) {
  const bool isAny = view.scale.threshold.has_value();
  const GlassMap map{
      [&](std::size_t voxel) { return !std::isnan(view.t[voxel]); },
      [&](std::size_t voxel) { return view.passes[voxel] != 0 ? std::fabs(view.t[voxel]) : 0.0F; },
      [&](std::size_t voxel) { return view.colour(voxel); }};
  const std::string words =
      isAny ? "What passes, seen through the brain: the largest |t| along each line of sight."
            : "Nothing passes; the brain is empty.";
  return element(
      "figure", {{"class", "glass"}},
      element("figcaption", words) + glassBrain(scene.grid, map, cellTitle(cell.record) + ". " + words));
}

std::string cellMaps(const GroupScene& scene, std::size_t index, GroupMaps& maps) {
  const TestedCell& cell = scene.outputs.cells[index];
  const GroupView view = readGroupView(scene.outputs, scene.grid, cell);
  return section(cellId("maps", index), "condition", 3, name(cellTitle(cell.record)),
                 mosaicFigure(scene, cell, view, index, maps) + glassFigure(scene, cell, view));
}

}  // namespace

GroupMaps groupMapsSection(const GroupOutputs& outputs) {
  GroupMaps maps;
  const GroupScene scene(
      outputs,
      formats::readImageHeader(outputs.path(outputs.cells.at(0).record.image(study::group_image::kT))));
  std::string content =
      element("p", "The maps lie on " + text(scene.underlay.words) +
                       ". L and R are left and right; z is the height of the slice in millimetres.");
  for (std::size_t i = 0; i < outputs.cells.size(); ++i) content += cellMaps(scene, i, maps);
  maps.html = section("maps", "part", 2, "Maps", content);
  maps.definitions =
      element("svg", {{"width", "0"}, {"height", "0"}, {"class", "definitions"}, {"aria-hidden", "true"}},
              "<defs>" + scene.sheet.definition() + "</defs>");
  return maps;
}

}  // namespace report
