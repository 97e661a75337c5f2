#include "inference/spread.h"

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "inference/complete_sample.h"
#include "inference/contrast_split.h"
#include "inference/draws.h"
#include "inference/scaled_design.h"

namespace inference {
namespace {

using Eigen::MatrixXf;

constexpr int kRelabellings = 499;

// What the contrast makes of each row of the design.
std::vector<double> countedRows(const Model& model) {
  const std::size_t columns = model.contrast.size();
  std::vector<double> counted;
  for (std::size_t row = 0; row < model.rows(); ++row) {
    const auto begin = model.design.begin() + static_cast<std::ptrdiff_t>(row * columns);
    counted.push_back(std::inner_product(model.contrast.begin(), model.contrast.end(), begin, 0.0));
  }
  return counted;
}

// 1 for rows that count more, else 0; empty unless there are two kinds, of two rows or more each.
std::vector<int> twoGroups(const Model& model) {
  const std::vector<double> counted = countedRows(model);
  const auto [least, most] = std::minmax_element(counted.begin(), counted.end());
  std::vector<int> group;
  for (const double value : counted) {
    if (value != *least && value != *most) return {};
    group.push_back(value == *most ? 1 : 0);
  }
  const auto ones = std::count(group.begin(), group.end(), 1);
  const bool areTwo = *least < *most && ones >= 2 && static_cast<std::size_t>(ones) + 2 <= group.size();
  return areTwo ? group : std::vector<int>();
}

// Per place: the variance of one group about its mean.
Eigen::ArrayXf variances(const MatrixXf& residuals, const std::vector<int>& group, int which) {
  Eigen::ArrayXf sums = Eigen::ArrayXf::Zero(residuals.cols()), squares = sums;
  float count = 0;
  for (Eigen::Index row = 0; row < residuals.rows(); ++row) {
    if (group[static_cast<std::size_t>(row)] != which) continue;
    const Eigen::ArrayXf values = residuals.row(row).transpose().array();
    sums += values;
    squares += values.square();
    ++count;
  }
  return (squares - sums.square() / count) / (count - 1);
}

// Mean logarithm of the ratio of variances, over places where both groups vary.
double logRatio(const MatrixXf& residuals, const std::vector<int>& group) {
  const Eigen::ArrayXf first = variances(residuals, group, 1), second = variances(residuals, group, 0);
  double sum = 0;
  int places = 0;
  for (Eigen::Index place = 0; place < first.size(); ++place) {
    if (!(first(place) > 0 && second(place) > 0)) continue;
    sum += std::log(static_cast<double>(first(place)) / static_cast<double>(second(place)));
    ++places;
  }
  return places == 0 ? 0 : sum / places;
}

std::vector<int> permuted(const std::vector<int>& group, const std::vector<int>& blocks, Draws draws) {
  std::map<int, std::vector<std::size_t>> rowsOf;
  for (std::size_t row = 0; row < group.size(); ++row)
    rowsOf[blocks.empty() ? 0 : blocks[row]].push_back(row);
  std::vector<int> result = group;
  for (const auto& [block, rows] : rowsOf) {
    std::vector<int> labels;
    for (const std::size_t row : rows) labels.push_back(group[row]);
    draws.shuffle(labels);
    for (std::size_t i = 0; i < rows.size(); ++i) result[rows[i]] = labels[i];
  }
  return result;
}

}  // namespace

std::optional<Spread> checkSpread(const Model& model, const Values& values, const std::vector<int>& blocks,
                                  std::uint32_t seed) {
  const std::vector<int> group = twoGroups(model);
  if (group.empty()) return std::nullopt;
  MatrixXf residuals = completeSample(values);
  if (residuals.cols() == 0) return std::nullopt;
  const MatrixXf basis = ScaledDesign(model, allRows(model.rows())).basis().cast<float>();
  residuals -= basis * (basis.transpose() * residuals).eval();
  const double own = logRatio(residuals, group);
  int reached = 1;
  for (int i = 1; i <= kRelabellings; ++i) {
    const std::vector<int> shuffled = permuted(group, blocks, Draws(~seed, static_cast<std::size_t>(i)));
    reached += std::abs(logRatio(residuals, shuffled)) >= std::abs(own) * (1 - 1e-5) ? 1 : 0;
  }
  return Spread{std::exp(own / 2), reached / static_cast<double>(kRelabellings + 1)};
}

}  // namespace inference
