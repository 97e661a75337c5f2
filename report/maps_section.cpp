#include "report/maps_section.h"

#include <fmt/core.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <nlohmann/json.hpp>

#include "formats/nifti.h"
#include "report/html.h"
#include "report/map_figures.h"
#include "report/sections.h"
#include "report/underlay.h"
#include "report/viewer_data.h"

namespace report {
namespace {

using formats::Json;

constexpr std::size_t kTextOfMosaic = 13'000;  // bytes, measured
constexpr const char* kUnderlayId = "vol-underlay";
constexpr const char* kMaskId = "vol-mask";

struct Place {
  std::size_t reference, condition;
};

struct Part {
  std::vector<MapFigure> figures;
  ViewerPart viewer;
};

// What all conditions share.
struct Scene {
  explicit Scene(const StudyOutputs& studyOutputs, const formats::ImageHeader& header)
      : outputs(studyOutputs),
        grid(header),
        underlay(readUnderlay(studyOutputs, grid)),
        levels(grid.upright(greyLevels(underlay.values, underlay.brightness))),
        sheet(grid, levels) {}
  const StudyOutputs& outputs;
  PageGrid grid;
  Underlay underlay;
  std::vector<std::uint8_t> levels;  // upright
  UnderlaySheet sheet;
  std::vector<Place> places = {};
  std::vector<std::uint8_t> mask = {};  // upright
  EmbeddingPlan plan = {};
  bool forScript = true;
};

std::vector<Place> placesOf(const StudyOutputs& outputs) {
  std::vector<Place> places;
  for (std::size_t r = 0; r < outputs.references.size(); ++r)
    for (std::size_t c = 0; c < outputs.references[r].record.conditions.size(); ++c) places.push_back({r, c});
  return places;
}

const std::string& statusFileOf(const StudyOutputs& outputs, const Place& place) {
  return outputs.references[place.reference].record.conditions[place.condition].statusFile;
}

std::vector<std::uint8_t> maskOf(const Scene& scene) {
  std::vector<std::uint8_t> any(scene.grid.voxels(), 0);
  for (const Place& place : scene.places) {
    const std::vector<float> status =
        formats::readImage(scene.outputs.path(statusFileOf(scene.outputs, place))).values;
    for (std::size_t i = 0; i < any.size() && i < status.size(); ++i)
      if (status[i] > 0) any[i] = 1;
  }
  return scene.grid.upright(any);
}

// With those of direction and status.
std::size_t mosaicsOf(const Scene& scene) {
  std::size_t mosaics = 0;
  for (const Place& place : scene.places)
    mosaics += scene.outputs.references[place.reference].record.conditions[place.condition].maps.size() + 2;
  return mosaics;
}

Part partOf(const Scene& scene, const Place& place) {
  const ConditionView view = readConditionView(scene.outputs, scene.grid, place.reference, place.condition);
  Part part{mapFigures(scene.outputs, scene.grid, scene.underlay.values, scene.sheet, view), {}};
  if (scene.forScript && scene.plan.withMaps)
    part.viewer = viewerPart(scene.outputs, view, scene.mask, scene.plan);
  return part;
}

std::vector<Part> partsOf(const Scene& scene, int threads) {
  std::vector<Part> parts(scene.places.size());
  std::atomic<std::size_t> next = 0;
  const auto work = [&] {
    for (std::size_t i = next++; i < parts.size(); i = next++) parts[i] = partOf(scene, scene.places[i]);
  };
  std::vector<std::future<void>> workers;
  for (int i = 1; i < threads; ++i) workers.push_back(std::async(std::launch::async, work));
  work();
  for (std::future<void>& worker : workers) worker.get();
  return parts;
}

std::string viewerOf(const Scene& scene, const Place& place) {
  if (!scene.forScript) return "";
  if (!scene.plan.withMaps)
    return element("p",
                   "The maps are too many to be embedded: open the images beside this page in a viewer.");
  return element(
      "div", {{"class", "viewer script-only"}, {"data-view", viewId(place.reference, place.condition)}}, "");
}

std::string conditionMaps(const Scene& scene, const Place& place, const Part& part) {
  const study::ConditionRecord& condition =
      scene.outputs.references[place.reference].record.conditions[place.condition];
  std::string content = viewerOf(scene, place);
  for (const MapFigure& figure : part.figures) content += figure.html;
  return section(placeId("maps", place.reference, place.condition), "condition", 4,
                 "Condition " + name(condition.name), content);
}

std::string html(const Scene& scene, const std::vector<Part>& parts) {
  std::string content = element(
      "p", "The maps lie on " + text(scene.underlay.words) +
               ". L and R are the patient's left and right; the reference is outlined in cyan; z is the "
               "height of the slice in millimetres.");
  std::size_t at = 0;
  for (std::size_t r = 0; r < scene.outputs.references.size(); ++r) {
    std::string conditions;
    for (; at < scene.places.size() && scene.places[at].reference == r; ++at)
      conditions += conditionMaps(scene, scene.places[at], parts[at]);
    content += section(placeId("maps", r), "reference", 3, name(scene.outputs.references[r].record.reference),
                       conditions);
  }
  return section("maps", "part", 2, "Maps", content);
}

void addData(const Scene& scene, std::vector<Part>& parts, MapsSection& result) {
  Json views = Json::array();
  result.volumes = volumeElement(kMaskId, scene.mask) + volumeElement(kUnderlayId, scene.levels);
  for (Part& part : parts) {
    if (!scene.plan.withMaps) break;
    views.push_back(std::move(part.viewer.json));
    result.volumes += part.viewer.volumes;
  }
  result.data = {{"grid", gridJson(scene.grid)},
                 {"mask", kMaskId},
                 {"underlay", kUnderlayId},
                 {"underlayName", scene.underlay.words},
                 {"views", std::move(views)}};
}

}  // namespace

MapsSection mapsSection(const StudyOutputs& outputs, bool forScript, std::size_t limit, int threads) {
  const std::vector<Place> places = placesOf(outputs);
  if (places.empty()) return {};
  Scene scene(outputs, formats::readImageHeader(outputs.path(statusFileOf(outputs, places[0]))));
  scene.places = places;
  scene.forScript = forScript;
  scene.mask = maskOf(scene);
  const auto voxels = static_cast<std::size_t>(std::count(scene.mask.begin(), scene.mask.end(), 1));
  const std::size_t mosaics = kTextOfMosaic * mosaicsOf(scene);
  scene.plan = embeddingPlan(places.size(), voxels, limit - std::min(limit, mosaics));
  std::vector<Part> parts = partsOf(scene, threads);
  MapsSection result;
  result.html = html(scene, parts);
  result.definitions =
      element("svg", {{"width", "0"}, {"height", "0"}, {"class", "definitions"}, {"aria-hidden", "true"}},
              "<defs>" + scene.sheet.definition() + "</defs>");
  if (forScript) addData(scene, parts, result);
  for (Part& part : parts)
    for (MapFigure& figure : part.figures)
      result.pictures.emplace_back(std::move(figure.file), std::move(figure.svg));
  return result;
}

}  // namespace report
