// The maps of a file .tav in the form in which a page gets them (packed_arrays.h): a header
//   {"grid": {"size", "affine"}, "voxels": cells of the grid, "maps": [{"type", "name", "kind" or null,
//    "positive", "negative" or null, "thresholds": [{"q", "threshold" or null}], "lower"}]}
// and for each map an array of 32-bit floats, the very ones of the file, a value per cell of the grid; "type"
// joins both. Maps that have no thresholds have an empty list, and "lower" is where the file shows them from.
#ifndef TAVMAP_WORKBENCH_MAP_SET_REPLY_H
#define TAVMAP_WORKBENCH_MAP_SET_REPLY_H

#include <string>

#include "formats/map_set.h"

namespace workbench {

[[nodiscard]] std::string encodedMapSet(const formats::MapSet& set);

}  // namespace workbench

#endif
