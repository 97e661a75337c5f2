// Places grouped by the rows that have values there.
#ifndef TAVMAP_INFERENCE_PLACE_GROUPS_H
#define TAVMAP_INFERENCE_PLACE_GROUPS_H

#include <cstdint>
#include <vector>

#include "inference/model.h"

namespace inference {

struct PlaceGroup {
  std::vector<int> rows;             // ascending
  std::vector<std::int32_t> places;  // ascending
};

// Values per place.
[[nodiscard]] std::vector<int> countRows(const Values& values);

// Those places that have at least `fewest` of them: the group of all rows first, if any.
[[nodiscard]] std::vector<PlaceGroup> groupPlaces(const Values& values, const std::vector<int>& rowsOfPlace,
                                                  int fewest);

}  // namespace inference

#endif
