#include "inference/model.h"

#include <fmt/core.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "inference/contrast_split.h"
#include "inference/scaled_design.h"

namespace inference {

namespace {

bool allFinite(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

void checkShape(const Model& model) {
  const std::size_t columns = model.contrast.size();
  if (columns == 0 || model.columns.size() != columns || model.design.size() % columns != 0 ||
      model.design.empty())
    throw std::invalid_argument(
        fmt::format("The model has {} names of columns, {} weights and {} entries; it wants a "
                    "name and a weight per column, and a row of entries per map.",
                    model.columns.size(), columns, model.design.size()));
  if (!allFinite(model.design) || !allFinite(model.contrast))
    throw std::invalid_argument(
        "The model has entries that are no numbers; leave out maps whose covariates are missing.");
  if (std::all_of(model.contrast.begin(), model.contrast.end(), [](double weight) { return weight == 0; }))
    throw std::invalid_argument(
        "The contrast is 0 for every column of the model; ask for at least one of them.");
}

Model without(const Model& model, std::size_t column) {
  Model rest{.columns = {}, .design = {}, .contrast = {}};
  for (std::size_t j = 0; j < model.contrast.size(); ++j)
    if (j != column) rest.contrast.push_back(model.contrast[j]);
  for (std::size_t i = 0; i < model.design.size(); ++i)
    if (i % model.contrast.size() != column) rest.design.push_back(model.design[i]);
  return rest;
}

// Those that the others make.
std::vector<std::string> dependentColumns(const Model& model, Eigen::Index rank) {
  std::vector<std::string> names;
  for (std::size_t j = 0; j < model.contrast.size(); ++j)
    if (model.contrast.size() == 1 || ScaledDesign(without(model, j), allRows(model.rows())).rank() == rank)
      names.push_back(model.columns[j]);
  return names;
}

}  // namespace

void checkModel(const Model& model) {
  checkShape(model);
  const ScaledDesign design(model, allRows(model.rows()));
  if (design.rank() < static_cast<Eigen::Index>(model.contrast.size())) {
    const std::string names = fmt::format("{}", fmt::join(dependentColumns(model, design.rank()), ", "));
    throw std::invalid_argument(fmt::format(
        "Columns of the model can be made of one another ({}), so that {}; leave one of them out.", names,
        design.tells() ? "their coefficients have no one value" : "the contrast cannot be estimated"));
  }
  if (model.rows() <= model.contrast.size())
    throw std::invalid_argument(fmt::format(
        "The model has {} rows and {} columns; at least one row more than columns is needed. Take more maps "
        "or fewer columns.",
        model.rows(), model.contrast.size()));
}

}  // namespace inference
