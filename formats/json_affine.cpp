#include "formats/json_affine.h"

#include <cmath>

namespace formats {

Json affineToJson(const Affine& affine) {
  Json rows = Json::array();
  for (int row = 0; row < 4; ++row) {
    rows.push_back({affine.at(row, 0), affine.at(row, 1), affine.at(row, 2), affine.at(row, 3)});
  }
  return rows;
}

Affine affineFromJson(const JsonPlace& place) {
  Affine affine;
  if (place.elements() != 4) place.fail("four rows are expected", "Write a 4 x 4 matrix");
  for (int row = 0; row < 4; ++row) {
    const JsonPlace numbers = place.element(static_cast<std::size_t>(row));
    if (numbers.elements() != 4) numbers.fail("four numbers are expected", "Write a 4 x 4 matrix");
    for (int column = 0; column < 4; ++column) {
      affine.at(row, column) = numbers.element(static_cast<std::size_t>(column)).number();
    }
  }
  if (!std::isnormal(determinant(affine))) place.fail("the transform has no inverse", "Correct the matrix");
  return affine;
}

}  // namespace formats
