// The JSON text in the header extension of a .tav file.
#ifndef TAVMAP_FORMATS_MAP_SET_JSON_H
#define TAVMAP_FORMATS_MAP_SET_JSON_H

#include <cstdint>
#include <string>

#include "formats/map_set.h"

namespace formats {

[[nodiscard]] std::string mapSetToJson(const MapSet& set);

// Whether a header extension is one of these, as far as its first characters tell.
[[nodiscard]] bool looksLikeMapSet(const std::string& extension);

// Everything but affine, space code and values. Zero bytes that pad the extension are passed over.
// Throws FileError.
[[nodiscard]] MapSet mapSetFromJson(const std::string& extension, const std::string& path);

// "#rrggbb" of a packed colour with red in the lowest byte, and back.
[[nodiscard]] std::string colorText(std::int32_t packed);

}  // namespace formats

#endif
