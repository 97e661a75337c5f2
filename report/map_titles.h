// What a kind of map is called on a page, shorter than in sidecars.
#ifndef TAVMAP_REPORT_MAP_TITLES_H
#define TAVMAP_REPORT_MAP_TITLES_H

#include <string>

#include "tav/tav_defs.h"

namespace report {

// "influence of V1 on the voxel: what its past adds to the voxel's own": plain text.
[[nodiscard]] std::string mapTitle(tav::MapType type, const std::string& reference);

struct SignWords {
  std::string positive, negative;  // plain text; the latter empty for maps without sign
};
// What a value of either sign is a measure of; whether anything leads is for the direction map to say.
[[nodiscard]] SignWords signWords(tav::MapType type, const std::string& reference);

// Whether values of this kind may be negative.
[[nodiscard]] bool hasSign(tav::MapType type);

}  // namespace report

#endif
