#include "inference/shuffle_worker.h"

#include <algorithm>

#include "inference/lanes.h"
#include "inference/t_distribution.h"

namespace inference {

namespace {

constexpr std::size_t kPieceStride = Correlations::kPiece * kLanes;

std::vector<Shuffle> someShuffles(const Shuffles& all, std::size_t first, std::size_t count) {
  std::vector<Shuffle> some;
  for (std::size_t i = first; i < first + count; ++i) some.push_back(all.at(i));
  return some;
}

}  // namespace

ShuffleWorker::ShuffleWorker(const SweepSetting& setting)
    : setting_(setting), piece_(batch() * kPieceStride), reached_(setting.places.slots(), 0) {
  for (const LaneSpan& span : setting.places.spans) {
    const int freedom = setting.places.splits[span.split].freedom;
    const auto at = std::find(freedoms_.begin(), freedoms_.end(), freedom);
    freedomOfSpan_.push_back(static_cast<std::size_t>(at - freedoms_.begin()));
    if (at == freedoms_.end()) freedoms_.push_back(freedom);
  }
}

void ShuffleWorker::run(std::size_t first, std::size_t count, Swept& swept) {
  const ShuffleWeights weights(setting_.places.splits, someShuffles(setting_.shuffles, first, count));
  Correlations correlations(setting_.places, weights);
  largest_.assign(count * freedoms_.size() * kLanes, 0.0F);
  for (std::size_t i = 0; i < freedomOfSpan_.size(); ++i)
    tally(setting_.places.spans[i], freedomOfSpan_[i], correlations, count);
  for (std::size_t s = 0; s < count; ++s) swept.z[first - 1 + s] = largestZ(s);
}

void ShuffleWorker::tally(const LaneSpan& span, std::size_t freedomClass, Correlations& correlations,
                          std::size_t count) {
  for (std::size_t begin = span.begin; begin < span.end; begin += Correlations::kPiece) {
    const std::size_t end = std::min(begin + Correlations::kPiece, span.end), slot = begin * kLanes;
    correlations.correlate(span, begin, end, piece_.data(), kPieceStride);
    for (std::size_t s = 0; s < count; ++s)
      tallyLanes(piece_.data() + s * kPieceStride, setting_.observed.bounds.data() + slot, end - begin,
                 setting_.options.twoSided, reached_.data() + slot,
                 largest_.data() + (s * freedoms_.size() + freedomClass) * kLanes);
  }
}

float ShuffleWorker::largestZ(std::size_t shuffle) const {
  double largest = 0;
  for (std::size_t k = 0; k < freedoms_.size(); ++k) {
    const float* lanes = largest_.data() + (shuffle * freedoms_.size() + k) * kLanes;
    const auto r = static_cast<double>(*std::max_element(lanes, lanes + kLanes));
    largest = std::max(largest, zOfT(tOfCorrelation(r, freedoms_[k]), freedoms_[k]));
  }
  return static_cast<float>(largest);
}

}  // namespace inference
