#include "inference/tested_places.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "inference/contrast_fit.h"
#include "inference/lanes.h"
#include "inference/place_groups.h"

namespace inference {

namespace {

// Whether rows of one block differ among these: else no permutation changes anything.
bool canBePermuted(const Model& model, const std::vector<int>& rows, const std::vector<int>& blocks) {
  std::set<int> seen;
  std::set<std::vector<double>> kinds;
  const std::size_t columns = model.contrast.size();
  for (const int row : rows) {
    const auto* begin = &model.design[static_cast<std::size_t>(row) * columns];
    std::vector<double> kind(begin, begin + columns);
    const int block = blocks.empty() ? 0 : blocks[static_cast<std::size_t>(row)];
    kind.push_back(block);
    const bool isNewKind = kinds.insert(kind).second;
    if (!seen.insert(block).second && isNewKind) return true;
  }
  return false;
}

class Collector {
 public:
  Collector(const Model& model, const Values& values, const TestOptions& options)
      : model_(model), values_(values), options_(options), own_(values.rows) {
    fixed_ = fixedBlocksOf(options, model.rows());
  }

  void add(const PlaceGroup& group) {
    if (!fixed_.empty() && !canBePermuted(model_, group.rows, options_.blocks)) return;
    const auto split = splitContrast(model_, group.rows, fixed_);
    if (!split) return;
    const std::size_t begin = found_.slots() / kLanes;
    for (const std::int32_t place : group.places) addPlace(*split, place);
    while (found_.slots() % kLanes != 0) addSlot(-1, {0, 0, 0}, 1);
    const std::size_t end = found_.slots() / kLanes;
    if (begin == end) return;
    found_.spans.push_back({begin, end, found_.splits.size()});
    found_.splits.push_back(*split);
  }

  [[nodiscard]] TestedPlaces take() { return std::move(found_); }

 private:
  void addPlace(const ContrastSplit& split, std::int32_t place) {
    for (std::size_t row = 0; row < own_.size(); ++row)
      own_[row] = static_cast<double>(values_.of(row, static_cast<std::size_t>(place)));
    const auto fit = fitContrast(split, own_);
    if (!fit) return;
    for (double& value : own_) value /= fit->length;
    addSlot(place, *fit, split.freedom);
  }

  // own_ holds its residuals; of an empty slot they count for nothing.
  void addSlot(std::int32_t place, const ContrastFit& fit, int freedom) {
    const std::size_t slot = found_.slots(), lane = slot % kLanes;
    if (lane == 0) found_.residuals.resize(found_.residuals.size() + own_.size() * kLanes, 0.0F);
    float* vector = found_.residuals.data() + slot / kLanes * own_.size() * kLanes;
    for (std::size_t row = 0; place >= 0 && row < own_.size(); ++row)
      vector[row * kLanes + lane] = static_cast<float>(own_[row]);
    found_.placeOfSlot.push_back(place);
    found_.lengths.push_back(static_cast<float>(fit.length));
    found_.varianceFactors.push_back(static_cast<float>(fit.length * fit.length / freedom));
    found_.effect.push_back(fit.effect);
    found_.t.push_back(fit.t);
  }

  const Model& model_;
  const Values& values_;
  const TestOptions& options_;
  std::vector<int> fixed_;  // blocks of permutations
  std::vector<double> own_;
  TestedPlaces found_;
};

}  // namespace

std::vector<int> fixedBlocksOf(const TestOptions& options, std::size_t rows) {
  if (options.exchange == Exchange::kSignFlips) return {};
  return options.blocks.empty() ? std::vector<int>(rows, 0) : options.blocks;
}

TestedPlaces testedPlaces(const Model& model, const Values& values, const TestOptions& options) {
  Collector collector(model, values, options);
  std::vector<int> rowsOfPlace = countRows(values);
  const int fewest =
      static_cast<int>(std::ceil(options.smallestShare * static_cast<double>(values.rows) - 1e-9));
  for (const PlaceGroup& group : groupPlaces(values, rowsOfPlace, std::max(1, fewest))) collector.add(group);
  TestedPlaces found = collector.take();
  found.rowsOfPlace = std::move(rowsOfPlace);
  return found;
}

}  // namespace inference
