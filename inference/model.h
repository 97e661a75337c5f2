// A linear model of a group, what is asked of it, and the values that it describes.
#ifndef TAVMAP_INFERENCE_MODEL_H
#define TAVMAP_INFERENCE_MODEL_H

#include <cstddef>
#include <string>
#include <vector>

namespace inference {

// values = design * coefficients + errors, at each place. A row is one map (of a participant, a session).
struct Model {
  std::vector<std::string> columns;  // their names, for messages
  std::vector<double> design;        // rows x columns, row-major
  std::vector<double> contrast;      // one weight per column

  [[nodiscard]] std::size_t rows() const { return contrast.empty() ? 0 : design.size() / contrast.size(); }
};

// Throws std::invalid_argument, with what to do, unless `model` can be tested: whole and finite, more rows
// than columns, columns that do not depend on one another, a contrast that can be estimated and is not 0.
void checkModel(const Model& model);

// Borrowed: [row][place], NaN where that row has no value.
struct Values {
  std::size_t rows = 0, places = 0;
  const float* at = nullptr;

  [[nodiscard]] float of(std::size_t row, std::size_t place) const { return at[row * places + place]; }
};

}  // namespace inference

#endif
