#include "tav/tail_thresholds.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <utility>

#include "tav/fdr_thresholds.h"
#include "tav/kernel/dispatch.h"
#include "tav/radix_sort.h"

namespace tav {
namespace {

constexpr std::size_t kSamples = 2048;  // per map
// The first tail holds this many times the share of voxels that the samples let expect, and a
// little more; a longer one is needed seldom.
constexpr double kShareFactor = 1.25, kExtraShare = 0.02;
constexpr double kShareGrowth = 4.0;

// Magnitudes from a cut on, in descending order, and what the whole map holds.
struct Tail {
  std::vector<float> magnitudes;  // NaN as -1, only when the tail is the whole map
  std::size_t nonZero = 0;        // NaN included
  std::size_t numbers = 0;        // non-zero and not NaN
};

class TailSelector {
 public:
  TailSelector(float scale, float cut) : scale_(scale), cut_(cut) {}

  void add(std::span<const float> piece) {
    for (; piece.size() > kStep; piece = piece.subspan(kStep)) take(piece.first(kStep));
    take(piece);
  }

  // The selected magnitudes, in no order.
  Tail finish() {
    tail_.magnitudes.resize(used_);
    return std::move(tail_);
  }

 private:
  static constexpr std::size_t kStep = 2048;  // for which there is always room

  void take(std::span<const float> values) {
    if (tail_.magnitudes.size() < used_ + kStep) tail_.magnitudes.resize(2 * used_ + kStep);
    const kernel::TailCounts counts =
        kernel_.selectTail(values.data(), values.size(), scale_, cut_, tail_.magnitudes.data() + used_);
    used_ += counts.selected;
    tail_.nonZero += values.size() - counts.zeros;
    tail_.numbers += values.size() - counts.zeros - counts.nans;
  }

  const kernel::Kernel& kernel_ = kernel::bestKernel();
  float scale_, cut_;
  Tail tail_;
  std::size_t used_ = 0;
};

void sortDescending(std::vector<float>& magnitudes) {
  radixSort(magnitudes, [](float magnitude) { return ~std::bit_cast<std::uint32_t>(magnitude); });
}

Tail selectTail(const MapSource& map, float cut) {
  TailSelector selector(map.scale(), cut);
  map.forEachPiece([&](MapSource::Piece piece) { selector.add(piece); });
  Tail tail = selector.finish();
  sortDescending(tail.magnitudes);
  return tail;
}

// Every non-zero magnitude.
Tail selectAll(const MapSource& map) {
  Tail tail = selectTail(map, std::numeric_limits<float>::denorm_min());
  tail.magnitudes.resize(tail.nonZero, -1.0F);
  return tail;
}

// Evenly spread non-zero magnitudes, in descending order.
Tail sample(const MapSource& map) {
  Tail samples;
  for (const float value : map.every(std::max<std::size_t>(map.size() / kSamples, 1))) {
    if (std::fabs(value) > 0.0F) samples.magnitudes.push_back(std::fabs(value));
  }
  samples.nonZero = samples.numbers = samples.magnitudes.size();
  sortDescending(samples.magnitudes);
  return samples;
}

class TailSearch {
 public:
  TailSearch(std::vector<float> qs, int cvConstant, Tail observed, Tail null, bool isWhole)
      : qs_(std::move(qs)), observed_(std::move(observed)), null_(std::move(null)), isWhole_(isWhole) {
    c_ = dependenceConstant(cvConstant, observed_.nonZero);
    for (const float q : qs_) results_.push_back({q, 0.0F, 0});
  }

  // False when the tail was too short to tell.
  [[nodiscard]] bool finish(ThresholdRule rule) { return rule == ThresholdRule::kStepUp ? stepUp() : walk(); }
  [[nodiscard]] std::vector<MapThreshold> results() const { return results_; }

 private:
  [[nodiscard]] double bound(std::size_t rank, float q) const {
    return static_cast<double>(rank) / static_cast<double>(observed_.nonZero) * (static_cast<double>(q) / c_);
  }

  bool walk() {
    if (null_.nonZero == 0) return true;
    for (MapThreshold& result : results_) result.nrPassing = observed_.numbers;
    std::size_t rank = 1, exceeding = 0, settled = 0;
    for (; rank <= observed_.magnitudes.size() && settled < results_.size(); ++rank) {
      const float candidate = observed_.magnitudes[rank - 1];
      while (exceeding < null_.magnitudes.size() && null_.magnitudes[exceeding] > candidate) ++exceeding;
      // One short when all exceed, as in the search over whole maps.
      const std::size_t count = std::min(exceeding, null_.nonZero - 1);
      const double p = static_cast<double>(count) / static_cast<double>(null_.nonZero);
      // The bounds ascend with q, so that smaller ones are violated first.
      while (settled < results_.size() && p > bound(rank, results_[settled].q))
        settle(rank, results_[settled++]);
    }
    return settled == results_.size() || isWhole_;
  }

  void settle(std::size_t rank, MapThreshold& result) const {
    result.threshold = std::max(observed_.magnitudes[rank == 1 ? 0 : rank - 2], 0.0F);
    result.nrPassing = rank == 1 ? 0 : nrReaching(result.threshold);
  }

  [[nodiscard]] std::size_t nrReaching(float threshold) const {
    const auto& all = observed_.magnitudes;
    return static_cast<std::size_t>(std::upper_bound(all.begin(), all.end(), threshold, std::greater<>()) -
                                    all.begin());
  }

  bool stepUp() {
    for (MapThreshold& result : results_) result.threshold = std::numeric_limits<float>::infinity();
    std::size_t reaching = 0;
    const std::size_t numbers = std::min(observed_.numbers, observed_.magnitudes.size());
    for (std::size_t rank = 1; rank <= numbers; ++rank) {
      const float candidate = observed_.magnitudes[rank - 1];
      while (reaching < null_.magnitudes.size() && null_.magnitudes[reaching] >= candidate) ++reaching;
      const double p = stepUpP(reaching);
      for (MapThreshold& result : results_) {
        if (!(p <= bound(rank, result.q))) continue;
        result.threshold = candidate;
        result.nrPassing = rank;
      }
    }
    // Below the tail p is at least this, and no bound is above the last one's limit.
    return isWhole_ || results_.empty() ||
           stepUpP(null_.magnitudes.size()) > static_cast<double>(results_.back().q) / c_;
  }

  [[nodiscard]] double stepUpP(std::size_t reaching) const {
    return static_cast<double>(1 + reaching) / static_cast<double>(null_.nonZero + 1);
  }

  std::vector<float> qs_;
  Tail observed_, null_;
  bool isWhole_;
  double c_ = 1.0;
  std::vector<MapThreshold> results_;  // by ascending q
};

// The share of the observed magnitudes that the search will look at, as the samples have it.
double expectedShare(ThresholdRule rule, const std::vector<float>& qs, int cvConstant, const Tail& observed,
                     const Tail& null) {
  TailSearch search(qs, cvConstant, observed, null, true);
  (void)search.finish(rule);
  std::size_t mostPassing = 0;
  for (const MapThreshold& result : search.results()) mostPassing = std::max(mostPassing, result.nrPassing);
  return static_cast<double>(mostPassing) / static_cast<double>(std::max<std::size_t>(observed.nonZero, 1));
}

}  // namespace

std::vector<MapThreshold> searchTailThresholds(ThresholdRule rule, std::vector<float> qs,
                                               const MapSource& observed, const MapSource& null,
                                               int cvConstant) {
  std::sort(qs.begin(), qs.end());
  const Tail samples = sample(observed);
  const double expected = expectedShare(rule, qs, cvConstant, samples, sample(null));
  for (double share = kShareFactor * expected + kExtraShare; share < 1.0; share *= kShareGrowth) {
    const auto rank = static_cast<std::size_t>(share * static_cast<double>(samples.magnitudes.size()));
    if (rank < 1) break;
    const float cut = samples.magnitudes[rank];
    TailSearch search(qs, cvConstant, selectTail(observed, cut), selectTail(null, cut), false);
    if (search.finish(rule)) return search.results();
  }
  TailSearch search(qs, cvConstant, selectAll(observed), selectAll(null), true);
  (void)search.finish(rule);
  return search.results();
}

}  // namespace tav
