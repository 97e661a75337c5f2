#include "tav/fdr_thresholds.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tav {
namespace {

constexpr float kEuler = 0.5772F;

// Everything that both rules need: sorted magnitudes, ascending q, the constant.
struct Search {
  const std::vector<float>& observed;
  const std::vector<float>& null;
  double c;
  std::vector<MapThreshold>& results;

  [[nodiscard]] std::size_t m() const { return observed.size(); }
  // The observed magnitude of rank r, 1 being the largest.
  [[nodiscard]] float candidate(std::size_t rank) const { return observed[m() - rank]; }
  [[nodiscard]] double bound(std::size_t rank, float q) const {
    return static_cast<double>(rank) / static_cast<double>(m()) * (static_cast<double>(q) / c);
  }
};

// Observed magnitudes that are numbers and reach the threshold.
std::size_t countPassing(const std::vector<float>& observed, float threshold) {
  const auto first = std::lower_bound(observed.begin(), observed.end(), std::max(threshold, 0.0F));
  return static_cast<std::size_t>(observed.end() - first);
}

// The empirical p-values of the walk, for candidates that come in descending order.
class WalkPValues {
 public:
  explicit WalkPValues(const std::vector<float>& null) : null_(null), j_(null.size() - 1) {}
  double at(float candidate) {
    while (j_ > 0 && null_[j_] > candidate) --j_;
    return static_cast<double>(null_.size() - 1 - j_) / static_cast<double>(null_.size());
  }

 private:
  const std::vector<float>& null_;
  std::size_t j_;
};

void settle(const Search& search, std::size_t rank, MapThreshold& result) {
  const float previous = search.candidate(rank == 1 ? 1 : rank - 1);
  result.threshold = std::max(previous, 0.0F);
  result.nrPassing = rank == 1 ? 0 : countPassing(search.observed, result.threshold);
}

void walk(const Search& search) {
  if (search.null.empty()) return;
  for (MapThreshold& result : search.results) result.nrPassing = countPassing(search.observed, 0.0F);
  WalkPValues pValues(search.null);
  std::vector<MapThreshold*> open;
  for (MapThreshold& result : search.results) open.push_back(&result);
  for (std::size_t rank = 1; rank <= search.m() && !open.empty(); ++rank) {
    const double p = pValues.at(search.candidate(rank));
    std::erase_if(open, [&](MapThreshold* result) {
      if (!(p > search.bound(rank, result->q))) return false;
      settle(search, rank, *result);
      return true;
    });
  }
}

// The smallest candidate that meets the bound for q; results are +infinity before.
void stepUp(const Search& search) {
  const auto& null = search.null;
  std::size_t nrBelow = null.size();  // null magnitudes below the candidate
  for (MapThreshold& result : search.results) result.threshold = std::numeric_limits<float>::infinity();
  for (std::size_t rank = 1; rank <= search.m() && search.candidate(rank) >= 0.0F; ++rank) {
    const float candidate = search.candidate(rank);
    while (nrBelow > 0 && null[nrBelow - 1] >= candidate) --nrBelow;
    const double p = static_cast<double>(1 + null.size() - nrBelow) / static_cast<double>(null.size() + 1);
    for (MapThreshold& result : search.results) {
      if (!(p <= search.bound(rank, result.q))) continue;
      result.threshold = candidate;
      result.nrPassing = rank;  // of equal candidates the last one meets the widest bound
    }
  }
}

}  // namespace

double dependenceConstant(int cvConstant, std::size_t m) {
  return cvConstant == 2 ? static_cast<double>(std::log(static_cast<float>(m)) + kEuler) : 1.0;
}

void checkCvConstant(int cvConst, std::ostream& err) {
  if (cvConst != 1 && cvConst != 2)
    err << "Unknown value for cVconst: " << cvConst << " , only 1 or 2 allowed";
}

void appendMagnitudes(std::span<const float> values, std::vector<float>& magnitudes) {
  for (const float value : values) {
    if (std::isnan(value)) {
      magnitudes.push_back(-1.0F);
    } else if (value != 0.0F) {
      magnitudes.push_back(std::fabs(value));
    }
  }
}

std::vector<MapThreshold> searchThresholds(ThresholdRule rule, std::vector<float> qs,
                                           std::vector<float>& observed, std::vector<float>& null,
                                           int cvConstant) {
  std::sort(qs.begin(), qs.end());
  std::sort(observed.begin(), observed.end());
  std::sort(null.begin(), null.end());
  std::vector<MapThreshold> results;
  for (const float q : qs) results.push_back({q, 0.0F, 0});
  const Search search{observed, null, dependenceConstant(cvConstant, observed.size()), results};
  if (rule == ThresholdRule::kStepUp) {
    stepUp(search);
  } else {
    walk(search);
  }
  return results;
}

bool bstrTwoSideFDR(std::vector<float> qs, const Array3D<float>& observed, const Array3D<float>& null,
                    int cvConst, std::vector<float>& thresholds, std::ostream& err) {
  checkCvConstant(cvConst, err);
  if (observed.size() == 0) return false;
  std::vector<float> observedMagnitudes, nullMagnitudes;
  appendMagnitudes({observed.elements(), observed.size()}, observedMagnitudes);
  appendMagnitudes({null.elements(), null.size()}, nullMagnitudes);
  const auto results =
      searchThresholds(ThresholdRule::kWalk, std::move(qs), observedMagnitudes, nullMagnitudes, cvConst);
  for (std::size_t k = 0; k < std::min(results.size(), thresholds.size()); ++k)
    thresholds[k] = results[k].threshold;
  return true;
}

}  // namespace tav
