// What results say about the kinds of maps.
#ifndef TAVMAP_RESULTS_MAP_WORDS_H
#define TAVMAP_RESULTS_MAP_WORDS_H

#include <string>

#include "tav/tav_defs.h"

namespace study {

// "influence of LH-V1 on each voxel": direction and meaning in words.
[[nodiscard]] std::string mapDescription(tav::MapType type, const std::string& reference);
// The part of a file name that says what a map holds: "Ref2Vox". A difference is never named like
// one of its parts.
const char* mapLabel(tav::MapType type);
// scale: the map scale factor as text.
[[nodiscard]] std::string mapUnits(tav::MapType type, const std::string& scale);

// On pages, shorter than the description: "influence of V1 on the voxel: what its past adds to predicting the
// voxel". Plain text.
[[nodiscard]] std::string mapTitle(tav::MapType type, const std::string& reference);

struct SignWords {
  std::string positive, negative;  // plain text; the latter empty for maps without sign
};
// What a value of either sign is a measure of; whether anything leads is for the direction map to say.
[[nodiscard]] SignWords signWords(tav::MapType type, const std::string& reference);

// Whether values of this kind may be negative.
[[nodiscard]] bool hasSign(tav::MapType type);

}  // namespace study

#endif
