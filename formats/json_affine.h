// Affines in JSON: four rows of four numbers.
#ifndef TAVMAP_FORMATS_JSON_AFFINE_H
#define TAVMAP_FORMATS_JSON_AFFINE_H

#include "formats/affine.h"
#include "formats/json_file.h"

namespace formats {

[[nodiscard]] Json affineToJson(const Affine& affine);

// Throws FileError for anything but four rows of four numbers with an inverse.
[[nodiscard]] Affine affineFromJson(const JsonPlace& place);

}  // namespace formats

#endif
