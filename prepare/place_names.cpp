#include "prepare/place_names.h"

#include "formats/nifti.h"
#include "prepare/fingerprint.h"
#include "prepare/region_files.h"

namespace study {
namespace {

std::string keyOf(const LabelVolume& volume) {
  Fingerprint key;
  for (const std::int32_t label : volume.labels) key.add("", static_cast<std::int64_t>(label));
  for (const auto& [label, name] : volume.names) key.add(name, static_cast<std::int64_t>(label));
  return key.hex();
}

}  // namespace

PlaceNames::PlaceNames(LabelVolume volume) : volume_(std::move(volume)), key_(keyOf(volume_)) {}

std::string PlaceNames::nameOf(std::int32_t label) const {
  return label == 0 ? "none" : labelName(volume_, label);
}

std::shared_ptr<const PlaceNames> readPlaceNames(const Request& request, const Grid& grid) {
  for (const ReferenceRequest& reference : request.references) {
    if (reference.kind != ReferenceKind::kLabels) continue;
    if (!sameGrid(gridOf(formats::readImageHeader(reference.image.string())), grid)) continue;
    return std::make_shared<PlaceNames>(readLabels(reference));
  }
  return nullptr;
}

}  // namespace study
