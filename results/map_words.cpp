#include "results/map_words.h"

#include <array>

namespace study {
namespace {

// REFERENCE, DIFFERENCE and SCALE stand for the reference's name, kDifference and the map scale factor.
constexpr const char* kDifference =
    "difference of the directed influences, REFERENCE on the voxel minus the voxel on REFERENCE (positive: "
    "REFERENCE leads; negative: the voxel leads; unequal noise can feign both)";
constexpr const char *kLogarithm = "natural logarithm of a ratio of error variances, times SCALE",
                     *kFromReference = "more from REFERENCE to the voxel",
                     *kToReference = "more from the voxel to REFERENCE", *kNoSign = "";

// Every kind needs all its words: there are no defaults.
struct MapWords {
  constexpr MapWords(tav::MapType mapType, const char* fileLabel, const char* unitsText,
                     const char* descriptionText, const char* titleText, const char* positiveText,
                     const char* negativeText)
      : type(mapType),
        label(fileLabel),
        units(unitsText),
        description(descriptionText),
        title(titleText),
        positive(positiveText),
        negative(negativeText) {}
  tav::MapType type;
  const char* label;
  const char* units;
  const char* description;  // in sidecars
  const char* title;        // on pages
  const char* positive;     // what a value above 0 is a measure of
  const char* negative;     // one below 0; kNoSign: there is none
};

constexpr auto kMapWords = std::to_array<MapWords>({
    {tav::REF2VOX, "Ref2Vox", kLogarithm, "influence of REFERENCE on each voxel",
     "influence of REFERENCE on the voxel: what its past adds to predicting the voxel",
     "from REFERENCE to the voxel", kNoSign},
    {tav::VOX2REF, "Vox2Ref", kLogarithm, "influence of each voxel on REFERENCE",
     "influence of the voxel on REFERENCE: what its past adds to predicting REFERENCE",
     "from the voxel to REFERENCE", kNoSign},
    {tav::INST, "Inst", kLogarithm,
     "instantaneous influence between REFERENCE and each voxel, without direction",
     "what REFERENCE and the voxel share within one volume, without direction", "shared within one volume",
     kNoSign},
    {tav::DTAV, "dTAV", kLogarithm, "DIFFERENCE",
     "influence of REFERENCE on the voxel minus that of the voxel on REFERENCE", kFromReference,
     kToReference},
    {tav::DTAV_IT, "dTAVIT", kLogarithm,
     "DIFFERENCE, where the instantaneous influence reaches its lower threshold, else 0",
     "the same difference where INST reaches its lower threshold, else 0", kFromReference, kToReference},
    {tav::DTAV_RC, "dTAVRC", "share, -1 to 1",
     "share of the DIFFERENCE in the sum of its magnitude and the instantaneous influence, -1 to 1",
     "the difference as a share of its magnitude and INST together, -1 to 1", kFromReference, kToReference},
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

std::string mapTitle(tav::MapType type, const std::string& reference) {
  return filledIn(wordsOf(type).title, "REFERENCE", reference);
}

SignWords signWords(tav::MapType type, const std::string& reference) {
  const MapWords& words = wordsOf(type);
  return {filledIn(words.positive, "REFERENCE", reference), filledIn(words.negative, "REFERENCE", reference)};
}

bool hasSign(tav::MapType type) {
  return wordsOf(type).negative[0] != '\0';
}

}  // namespace study
