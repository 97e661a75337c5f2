#include "report/map_titles.h"

#include <fmt/core.h>

#include <array>
#include <cstddef>

#include "tav/map_kinds.h"

namespace report {
namespace {

// {} stands for the reference's name.
struct KindTitle {
  tav::MapType type;
  const char *words, *positive, *negative;
};

constexpr const char *kFromReference = "more from {} to the voxel",
                     *kToReference = "more from the voxel to {}";

constexpr auto kTitles = std::to_array<KindTitle>({
    {tav::REF2VOX, "influence of {} on the voxel: what its past adds to predicting the voxel", "influence",
     ""},
    {tav::VOX2REF, "influence of the voxel on {}: what its past adds to predicting {}", "influence", ""},
    {tav::INST, "what {} and the voxel share within one volume, without direction", "shared", ""},
    {tav::DTAV, "influence of {} on the voxel minus that of the voxel on {}", kFromReference, kToReference},
    {tav::DTAV_IT, "the same difference where INST reaches its lower threshold, else 0", kFromReference,
     kToReference},
    {tav::DTAV_RC, "the difference as a share of its magnitude and INST together, -1 to 1", kFromReference,
     kToReference},
});

constexpr bool followsTheTypes() {
  for (std::size_t i = 0; i < kTitles.size(); ++i)
    if (static_cast<std::size_t>(kTitles[i].type) != i) return false;
  return true;
}
static_assert(kTitles.size() == tav::kNrOfMapTypes, "one row per row of tav/map_kinds.def");
static_assert(followsTheTypes(), "in the order of tav/map_kinds.def");

std::string filledIn(std::string words, const std::string& reference) {
  for (std::size_t at = 0; (at = words.find("{}", at)) != std::string::npos; at += reference.size())
    words.replace(at, 2, reference);
  return words;
}

}  // namespace

std::string mapTitle(tav::MapType type, const std::string& reference) {
  return filledIn(kTitles[static_cast<std::size_t>(type)].words, reference);
}

SignWords signWords(tav::MapType type, const std::string& reference) {
  const KindTitle& title = kTitles[static_cast<std::size_t>(type)];
  return {filledIn(title.positive, reference), filledIn(title.negative, reference)};
}

bool hasSign(tav::MapType type) {
  return kTitles[static_cast<std::size_t>(type)].negative[0] != '\0';
}

}  // namespace report
