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

}  // namespace study

#endif
