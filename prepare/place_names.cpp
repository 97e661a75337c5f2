#include "prepare/place_names.h"

#include <algorithm>
#include <utility>

#include "formats/nifti.h"
#include "prepare/fingerprint.h"
#include "prepare/label_files.h"

namespace study {
namespace {

std::string keyOf(const LabelVolume& volume) {
  Fingerprint key;
  for (const std::int32_t label : volume.labels) key.add("", static_cast<std::int64_t>(label));
  for (const auto& [label, name] : volume.names) key.add(name, static_cast<std::int64_t>(label));
  return key.hex();
}

}  // namespace

PlaceNames::PlaceNames(LabelVolume volume, bool isResampled)
    : volume_(std::move(volume)), isResampled_(isResampled), key_(keyOf(volume_)) {}

std::string PlaceNames::nameOf(std::int32_t label) const {
  return label == 0 ? "none" : labelName(volume_, label);
}

std::shared_ptr<const PlaceNames> readPlaceNames(const Request& request, const Grid& grid) {
  const auto isAtlas = [](const ReferenceRequest& reference) {
    return reference.kind == ReferenceKind::kLabels;
  };
  const auto isOnGrid = [&](const ReferenceRequest& reference) {
    return isAtlas(reference) && sameGrid(gridOf(formats::readImageHeader(reference.image.string())), grid);
  };
  const auto& all = request.references;
  const auto end = all.end();
  auto chosen = std::find_if(all.begin(), end, isOnGrid);
  if (chosen == end) chosen = std::find_if(all.begin(), end, isAtlas);
  if (chosen == end) return nullptr;
  LabelVolume volume = readLabels(*chosen, request.title);
  const bool isResampled = !sameGrid(volume.grid, grid);
  volume.labels = labelsOnGrid(volume, grid);
  return std::make_shared<PlaceNames>(std::move(volume), isResampled);
}

}  // namespace study
