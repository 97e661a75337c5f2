#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/json_file.h"
#include "formats/nifti.h"
#include "inspect/shown_map.h"

namespace inspect {
namespace {

using formats::FileError;
using formats::Json;
using formats::JsonPlace;

std::string withoutEnding(const std::string& path) {
  for (const std::string ending : {".nii.gz", ".nii"})
    if (path.ends_with(ending)) return path.substr(0, path.size() - ending.size());
  return path;
}

Json sidecarOf(const std::string& image) {
  const std::string path = withoutEnding(image) + ".json";
  if (!std::filesystem::exists(path))
    throw FileError(image, fmt::format("its sidecar {} is missing, which has the thresholds", path),
                    "Keep both files together, or give the map set (.tav)");
  return formats::parseJson(formats::readTextFile(path), path);
}

// Images that are made from a map say which: those of p-values are no effects, the map where it passes is
// one.
bool holdsPValues(const JsonPlace& sidecar) {
  return sidecar.has("StatisticFile") && !sidecar.has("Thresholds");
}

void requireEffectMap(const std::string& image, const JsonPlace& sidecar) {
  if (holdsPValues(sidecar))
    throw FileError(image, "holds p-values, and pictures show effects",
                    fmt::format("Draw the effect map: {}", sidecar.member("StatisticFile").text()));
  if (!sidecar.has("MapType"))
    sidecar.fail("this is no sidecar of a map that `tavmap run` or `tavmap bids` wrote",
                 "Give one of their *_stat-effect_statmap.nii.gz, or the map set (.tav)");
}

[[noreturn]] void refuseQ(const std::string& image, const JsonPlace& thresholds, double q) {
  std::string known;
  for (std::size_t i = 0; i < thresholds.elements(); ++i)
    known += fmt::format("{}{}", i == 0 ? "" : ", ", thresholds.element(i).member("Q").number());
  throw FileError(image, fmt::format("the map has no threshold for q = {}", q), "It has: q = " + known);
}

// Unset: nothing passes.
std::optional<float> thresholdAt(double q, const JsonPlace& thresholds, const std::string& image) {
  for (std::size_t i = 0; i < thresholds.elements(); ++i) {
    const JsonPlace entry = thresholds.element(i);
    if (std::abs(entry.member("Q").number() - q) > 1e-9) continue;
    const JsonPlace threshold = entry.member("Threshold");
    if (threshold.value().is_null()) return std::nullopt;
    return static_cast<float>(threshold.number());
  }
  refuseQ(image, thresholds, q);
}

// Where map sets have full colour, in multiples of the threshold.
float fullColourAt(const std::string& mapType) {
  return mapType == "INST" ? 5.0F : 3.0F;
}

void setRangeFrom(const std::optional<float>& threshold, const std::string& mapType, double q,
                  render::SlicePicture& picture) {
  picture.lower = threshold.value_or(HUGE_VALF);
  picture.upper = threshold ? fullColourAt(mapType) * *threshold : HUGE_VALF;
  picture.caption = thresholdCaption(q, picture.lower);
}

// A map that no threshold is searched for.
void setWholeRange(render::SlicePicture& picture) {
  picture.lower = picture.upper = 0;
  for (const float value : picture.map)
    if (std::isfinite(value)) picture.upper = std::max(picture.upper, std::abs(value));
  picture.caption = "without thresholds: every value but 0 is shown";
}

// Differences have a sign, the other kinds do not.
bool isDifference(const std::string& mapType) {
  return mapType.starts_with("DTAV");
}

}  // namespace

ShownMap shownMapOfImage(const std::string& path, double q, MapColours colours) {
  if (colours == MapColours::kStored)
    throw FileError(path, "the image keeps no colours of its own",
                    "Leave out --colours plugin, or give the map set (.tav)");
  const Json document = sidecarOf(path);
  const JsonPlace sidecar(document, withoutEnding(path) + ".json");
  requireEffectMap(path, sidecar);
  const std::string mapType = sidecar.member("MapType").text();
  formats::Image3D image = formats::readImage(path);
  ShownMap shown{std::filesystem::path(withoutEnding(path)).filename().string(),
                 sidecar.member("Reference").text(),
                 image.header,
                 {}};
  shown.picture.size = image.header.size;
  shown.picture.affine = image.header.affine.m;
  shown.picture.map = std::move(image.values);
  shown.picture.title = fmt::format("{}: {}", sidecar.member("Condition").text(), mapType);
  shown.picture.positive = render::warmScale();
  if (isDifference(mapType)) shown.picture.negative = render::coldScale();
  if (sidecar.has("Thresholds"))
    setRangeFrom(thresholdAt(q, sidecar.member("Thresholds"), path), mapType, q, shown.picture);
  else
    setWholeRange(shown.picture);
  return shown;
}

}  // namespace inspect
