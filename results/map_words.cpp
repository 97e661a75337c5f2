#include "results/map_words.h"

#include <array>

namespace study {
namespace {

// REFERENCE, DIFFERENCE and SCALE stand for the reference's name, kDifference and the map scale factor.
constexpr const char* kDifference =
    "difference of the directed influences, REFERENCE on the voxel minus the voxel on REFERENCE (positive: "
    "REFERENCE leads; negative: the voxel leads; unequal noise can feign both)";
constexpr const char* kLogarithm = "natural logarithm of a ratio of error variances, times SCALE";

// Every kind needs all its words: there are no defaults.
struct MapWords {
  constexpr MapWords(tav::MapType mapType, const char* fileLabel, const char* unitsText,
                     const char* descriptionText)
      : type(mapType), label(fileLabel), units(unitsText), description(descriptionText) {}
  tav::MapType type;
  const char* label;
  const char* units;
  const char* description;
};

constexpr auto kMapWords = std::to_array<MapWords>({
    {tav::REF2VOX, "Ref2Vox", kLogarithm, "influence of REFERENCE on each voxel"},
    {tav::VOX2REF, "Vox2Ref", kLogarithm, "influence of each voxel on REFERENCE"},
    {tav::INST, "Inst", kLogarithm,
     "instantaneous influence between REFERENCE and each voxel, without direction"},
    {tav::DTAV, "dTAV", kLogarithm, "DIFFERENCE"},
    {tav::DTAV_IT, "dTAVIT", kLogarithm,
     "DIFFERENCE, where the instantaneous influence reaches its lower threshold, else 0"},
    {tav::DTAV_RC, "dTAVRC", "share, -1 to 1",
     "share of the DIFFERENCE in the sum of its magnitude and the instantaneous influence, -1 to 1"},
});

constexpr bool followsTheTypes() {
  for (std::size_t i = 0; i < kMapWords.size(); ++i) {
    if (static_cast<std::size_t>(kMapWords[i].type) != i) return false;
  }
  return true;
}
static_assert(kMapWords.size() == tav::kNrOfMapTypes, "one row per row of tav/map_kinds.def");
static_assert(followsTheTypes(), "in the order of tav/map_kinds.def");

const MapWords& wordsOf(tav::MapType type) {
  return kMapWords[static_cast<std::size_t>(type)];
}

std::string filledIn(std::string text, const std::string& place, const std::string& value) {
  for (std::size_t at = 0; (at = text.find(place, at)) != std::string::npos; at += value.size())
    text.replace(at, place.size(), value);
  return text;
}

}  // namespace

std::string mapDescription(tav::MapType type, const std::string& reference) {
  return filledIn(filledIn(wordsOf(type).description, "DIFFERENCE", kDifference), "REFERENCE", reference);
}

const char* mapLabel(tav::MapType type) {
  return wordsOf(type).label;
}

std::string mapUnits(tav::MapType type, const std::string& scale) {
  return filledIn(wordsOf(type).units, "SCALE", scale);
}

}  // namespace study
