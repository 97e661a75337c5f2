#include "inference/place_groups.h"

#include <cmath>
#include <functional>
#include <map>

#include "inference/contrast_split.h"

namespace inference {

namespace {

std::vector<int> rowsWithValues(const Values& values, std::size_t place) {
  std::vector<int> rows;
  for (std::size_t row = 0; row < values.rows; ++row)
    if (std::isfinite(values.of(row, place))) rows.push_back(static_cast<int>(row));
  return rows;
}

}  // namespace

std::vector<int> countRows(const Values& values) {
  std::vector<int> counts(values.places, 0);
  for (std::size_t row = 0; row < values.rows; ++row)
    for (std::size_t place = 0; place < values.places; ++place)
      if (std::isfinite(values.of(row, place))) ++counts[place];
  return counts;
}

std::vector<PlaceGroup> groupPlaces(const Values& values, const std::vector<int>& rowsOfPlace, int fewest) {
  PlaceGroup whole{allRows(values.rows), {}};
  std::map<std::vector<int>, std::vector<std::int32_t>> others;
  for (std::size_t place = 0; place < values.places; ++place) {
    if (rowsOfPlace[place] < fewest) continue;
    const bool isWhole = rowsOfPlace[place] == static_cast<int>(values.rows);
    auto& places = isWhole ? whole.places : others[rowsWithValues(values, place)];
    places.push_back(static_cast<std::int32_t>(place));
  }
  std::vector<PlaceGroup> groups;
  if (!whole.places.empty()) groups.push_back(std::move(whole));
  for (auto& [rows, places] : others) groups.push_back({rows, std::move(places)});
  return groups;
}

}  // namespace inference
