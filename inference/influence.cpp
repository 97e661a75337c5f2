#include "inference/influence.h"

#include <cmath>
#include <optional>
#include <set>
#include <stdexcept>

#include "inference/contrast_fit.h"
#include "inference/contrast_split.h"
#include "inference/split_cache.h"

namespace inference {

namespace {

WithoutOne fitWithout(int unit, const std::vector<int>& units, std::vector<double> values,
                      SplitCache& splits) {
  std::vector<int> rows;
  for (std::size_t row = 0; row < values.size(); ++row)
    if (units[row] != unit && std::isfinite(values[row])) rows.push_back(static_cast<int>(row));
  const auto& split = splits.of(rows);
  const auto fit = split ? fitContrast(*split, values) : std::nullopt;
  if (!fit) return {std::nan(""), std::nan("")};
  return {fit->effect, fit->t};
}

std::vector<double> valuesAt(const Values& values, std::size_t place) {
  if (place >= values.places)
    throw std::invalid_argument("There is no such place to leave participants out of.");
  std::vector<double> own;
  for (std::size_t row = 0; row < values.rows; ++row)
    own.push_back(static_cast<double>(values.of(row, place)));
  return own;
}

}  // namespace

std::vector<std::vector<WithoutOne>> leaveOneOut(const Model& model, const Values& values,
                                                 std::span<const std::size_t> places,
                                                 const std::vector<int>& units) {
  const std::vector<int> own = units.empty() ? allRows(values.rows) : units;
  if (model.rows() != values.rows || own.size() != values.rows)
    throw std::invalid_argument("A model, its maps and their participants have as many rows as one another.");
  SplitCache splits(model);
  std::vector<std::vector<WithoutOne>> result;
  for (const int unit : std::set<int>(own.begin(), own.end())) {
    result.emplace_back();
    for (const std::size_t place : places)
      result.back().push_back(fitWithout(unit, own, valuesAt(values, place), splits));
  }
  return result;
}

}  // namespace inference
