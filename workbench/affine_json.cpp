#include "workbench/affine_json.h"

#include <nlohmann/json.hpp>

namespace workbench {

nlohmann::ordered_json affineJson(const formats::Affine& affine) {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (int row = 0; row < 3; ++row)
    rows.push_back({affine.at(row, 0), affine.at(row, 1), affine.at(row, 2), affine.at(row, 3)});
  rows.push_back({0, 0, 0, 1});
  return rows;
}

}  // namespace workbench
