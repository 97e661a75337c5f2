#include "report/map_figures.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include "report/code_figures.h"
#include "report/html.h"
#include "report/mosaic.h"
#include "report/quotes.h"
#include "report/sections.h"
#include "results/map_words.h"
#include "results/output_names.h"
#include "tav/map_kinds.h"

namespace report {
namespace {

constexpr std::size_t kMostPeaks = 4;

// The slices of the map's peak and of its largest clusters.
std::vector<int> wantedSlices(const PageGrid& grid, const ConditionView& view, const MapView& map) {
  std::vector<int> slices;
  const auto add = [&](const std::array<int, 3>& voxel) {
    const int slice = grid.view().position(voxel)[2];
    if (std::find(slices.begin(), slices.end(), slice) == slices.end()) slices.push_back(slice);
  };
  if (study::hasPeak(*view.record, *map.map)) add(map.map->peakVoxel);
  for (const study::ClusterResult& cluster : map.map->familyWise.largest) {
    if (slices.size() >= kMostPeaks) break;
    add(cluster.peakVoxel);
  }
  return slices;
}

std::string lookedUp(const StudyOutputs& outputs, const ConditionView& view, const MapView& map) {
  const ReferenceOutputs& reference = outputs.references[view.reference];
  const Quotes quotes = Quotes(reference.json, reference.file)
                            .at(fmt::format("/Conditions/{}/Maps/{}", view.condition, map.index));
  if (map.map->thresholds.empty())
    return "This map has no thresholds; the largest magnitude has the strongest colour.";
  const std::size_t last = map.map->thresholds.size() - 1;
  const Quotes at = quotes.at(fmt::format("/Thresholds/{}", last));
  const std::string q = "q = " + at.number("/Q");
  if (!map.scale.threshold) return "No voxel survives at " + q + "; everything is faint.";
  return at.number("/VoxelsPassingOutsideReference") + " voxels pass at " + q + ", from " +
         at.number("/Threshold", Digits::kFour) + " on; what falls short is faint.";
}

std::string colourWords(const MapView& map, const std::string& reference) {
  if (!map.scale.hasSign) return "";
  const study::SignWords words = study::signWords(map.map->type, reference);
  return fmt::format(" Red to yellow, positive: {}. Blue, negative: {}.", text(words.positive),
                     text(words.negative));
}

constexpr const char* kDirectionWords =
    " Half as strong: the voxel passes, and unequal noise alone might make its sign (no support with "
    "reversed time).";

std::string plainLabel(const StudyOutputs& outputs, const ConditionView& view, const MapView& map) {
  const std::string& reference = outputs.references[view.reference].record.reference;
  return fmt::format(
      "{}, {}, condition {}. Axial slices from below to above, the patient's left on the left; the "
      "reference is outlined.",
      tav::mapKind(map.map->type).keyword, study::mapTitle(map.map->type, reference), view.record->name);
}

std::string unitOf(const StudyOutputs& outputs, const ConditionView& view, tav::MapType type) {
  const double scale = outputs.references[view.reference].record.model.settings.mapScale;
  return study::mapUnits(type, fmt::format("{}", scale));
}

bool showsDirections(const ConditionView& view, const MapView& map) {
  return study::hasSign(map.map->type) && !view.directions.empty();
}

std::string idOf(const ConditionView& view, const MapView& map) {
  return placeId("mosaic", view.reference, view.condition) + "-" + tav::mapKind(map.map->type).keyword;
}

MosaicMap drawnMap(const ConditionView& view, const MapView& map) {
  const bool withDirections = showsDirections(view, map);
  MosaicMap drawn{idOf(view, map),
                  [overlay = MapOverlay(map.scale), &view, &map, withDirections](std::size_t voxel) {
                    const render::Rgba colour = overlay.colour(map.values[voxel]);
                    const bool isUnsupported =
                        withDirections && view.directions[voxel] >=
                                              static_cast<std::uint8_t>(study::DirectionCode::kNotSupported);
                    return isUnsupported ? unsupported(colour) : colour;
                  },
                  {{view.region, "#0ff"}}};
  if (!map.clusters.empty()) drawn.outlines.push_back({map.clusters, "#fff"});
  return drawn;
}

std::string clusterWords(const MapView& map) {
  const auto passes = std::find(map.clusters.begin(), map.clusters.end(), 1);
  if (passes == map.clusters.end()) return "";
  return fmt::format(" White line: clusters whose family-wise p, as wholes, is {} or less.",
                     study::kFamilyWiseAlpha);
}

MapFigure figureOf(const StudyOutputs& outputs, const PageGrid& grid, const std::vector<float>& underlay,
                   const UnderlaySheet& sheet, const ConditionView& view, const MapView& map) {
  const std::string& reference = outputs.references[view.reference].record.reference;
  const std::string svg =
      mosaic(grid, drawnMap(view, map), mosaicSlices(grid, underlay, wantedSlices(grid, view, map)),
             plainLabel(outputs, view, map));
  const std::string keyword = tav::mapKind(map.map->type).keyword;
  const std::string caption = element("strong", keyword) + ": " +
                              text(study::mapTitle(map.map->type, reference)) + ". " +
                              lookedUp(outputs, view, map) + colourWords(map, reference) +
                              (showsDirections(view, map) ? kDirectionWords : "") + clusterWords(map);
  const std::string unit = unitOf(outputs, view, map.map->type);
  const std::string bar = element("div", {{"class", "scale"}},
                                  colourBar(map.scale, unit) + element("small", "Unit: " + text(unit)));
  return {element("figure", {{"class", "mosaic"}, {"id", idOf(view, map)}},
                  element("figcaption", caption) + svg + bar) +
              "\n",
          pictureFileOf(map.map->file), sheet.standalone(svg, idOf(view, map))};
}

}  // namespace

std::string pictureFileOf(const std::string& image) {
  return std::filesystem::path(study::OutputNames::sidecarOf(image)).replace_extension(".svg").string();
}

std::vector<MapFigure> mapFigures(const StudyOutputs& outputs, const PageGrid& grid,
                                  const std::vector<float>& underlay, const UnderlaySheet& sheet,
                                  const ConditionView& view) {
  std::vector<MapFigure> figures;
  for (const MapView& map : view.maps) {
    figures.push_back(figureOf(outputs, grid, underlay, sheet, view, map));
    if (map.map->type == tav::DTAV && !view.directions.empty())
      figures.push_back(directionFigure(outputs, grid, underlay, sheet, view));
  }
  figures.push_back(statusFigure(outputs, grid, underlay, sheet, view));
  return figures;
}

}  // namespace report
