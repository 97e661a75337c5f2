#include "inference/shuffle_worker.h"

#include <algorithm>

#include "inference/lanes.h"
#include "inference/t_distribution.h"

namespace inference {

namespace {

constexpr std::size_t kPieceStride = Correlations::kPiece * kLanes;

bool wantsMaps(const TestOptions& options) {
  return options.enhance || options.clusterFormingZ > 0 || options.varianceFwhmMm > 0;
}

std::vector<Shuffle> someShuffles(const Shuffles& all, std::size_t first, std::size_t count) {
  std::vector<Shuffle> some;
  for (std::size_t i = first; i < first + count; ++i) some.push_back(all.at(i));
  return some;
}

}  // namespace

std::size_t ShuffleWorker::batch(const TestOptions& options) {
  return wantsMaps(options) ? 8 : 32;
}

ShuffleWorker::ShuffleWorker(const SweepSetting& setting)
    : setting_(setting),
      models_(setting.model, fixedBlocksOf(setting.options, setting.model.rows())),
      stride_(wantsMaps(setting.options) ? setting.places.slots() : kPieceStride),
      reached_(setting.places.slots(), 0) {
  const TestOptions& options = setting.options;
  classifyFreedoms();
  maps_.resize(batch(options) * stride_);
  if (options.varianceFwhmMm > 0) {
    pseudoT_.emplace(setting.places, setting.slots, options.varianceFwhmMm);
    squares_.resize(maps_.size());
  } else if (wantsMaps(options)) {
    for (const int freedom : freedoms_) tables_.emplace_back(freedom);
  }
  if (options.enhance) enhancer_.emplace(setting.slots, options.enhancement);
  if (options.clusterFormingZ > 0) finder_.emplace(setting.slots, options.clusterFormingZ);
}

void ShuffleWorker::classifyFreedoms() {
  for (const LaneSpan& span : setting_.places.spans) {
    const int freedom = setting_.places.splits[span.split].freedom;
    const auto at = std::find(freedoms_.begin(), freedoms_.end(), freedom);
    freedomOfSpan_.push_back(static_cast<std::size_t>(at - freedoms_.begin()));
    if (at == freedoms_.end()) freedoms_.push_back(freedom);
  }
}

void ShuffleWorker::run(std::size_t first, std::size_t count, Swept& swept) {
  const ShuffleWeights weights(setting_.places.splits, someShuffles(setting_.shuffles, first, count),
                               models_);
  Correlations correlations(setting_.places, weights);
  largest_.assign(count * freedoms_.size() * kLanes, 0.0F);
  runMaps(correlations, count);
  const std::size_t slots = setting_.places.slots();
  for (std::size_t s = 0; s < count; ++s) {
    const std::size_t to = first - 1 + s;
    swept.z[to] = largestZ(s);
    if (!enhancer_ && !finder_) continue;
    float* map = maps_.data() + s * stride_;
    if (!pseudoT_) makeZ(map);
    if (enhancer_) swept.enhanced[to] = enhancer_->largest({map, slots}, setting_.options.twoSided);
    if (finder_) swept.mass[to] = finder_->largestMass({map, slots}, setting_.options.twoSided);
  }
}

void ShuffleWorker::runMaps(Correlations& correlations, std::size_t count) {
  std::fill(squares_.begin(), squares_.end(), 0.0F);
  for (std::size_t i = 0; i < freedomOfSpan_.size(); ++i) {
    const LaneSpan& span = setting_.places.spans[i];
    if (pseudoT_) {
      correlateForPseudoT(span, correlations);
    } else {
      correlate(span, freedomOfSpan_[i], correlations, count);
    }
  }
  if (pseudoT_) makePseudoT(count);
}

void ShuffleWorker::correlate(const LaneSpan& span, std::size_t freedomClass, Correlations& correlations,
                              std::size_t count) {
  for (std::size_t begin = span.begin; begin < span.end; begin += Correlations::kPiece) {
    const std::size_t end = std::min(begin + Correlations::kPiece, span.end);
    float* out = maps_.data() + (stride_ == kPieceStride ? 0 : begin * kLanes);
    correlations.correlate(span, begin, end, out, stride_);
    for (std::size_t s = 0; s < count; ++s) tally(out + s * stride_, begin, end, s, freedomClass);
  }
}

void ShuffleWorker::correlateForPseudoT(const LaneSpan& span, Correlations& correlations) {
  for (std::size_t begin = span.begin; begin < span.end; begin += Correlations::kPiece) {
    const std::size_t end = std::min(begin + Correlations::kPiece, span.end), slot = begin * kLanes;
    correlations.alongEffect(span, begin, end, maps_.data() + slot, stride_);
    correlations.alongNuisances(span, begin, end, squares_.data() + slot, stride_);
  }
}

void ShuffleWorker::makePseudoT(std::size_t count) {
  for (std::size_t s = 0; s < count; ++s) {
    float* map = maps_.data() + s * stride_;
    pseudoT_->divide(map, squares_.data() + s * stride_);
    tally(map, 0, setting_.places.slots() / kLanes, s, 0);
  }
}

void ShuffleWorker::tally(const float* values, std::size_t begin, std::size_t end, std::size_t shuffle,
                          std::size_t freedomClass) {
  const std::size_t slot = begin * kLanes;
  tallyLanes(values, setting_.observed.bounds.data() + slot, end - begin, setting_.options.twoSided,
             reached_.data() + slot, largest_.data() + (shuffle * freedoms_.size() + freedomClass) * kLanes);
}

void ShuffleWorker::makeZ(float* map) const {
  for (std::size_t i = 0; i < freedomOfSpan_.size(); ++i) {
    const LaneSpan& span = setting_.places.spans[i];
    zOfCorrelations(map + span.begin * kLanes, (span.end - span.begin) * kLanes,
                    tables_[freedomOfSpan_[i]].values().data());
  }
}

float ShuffleWorker::largestZ(std::size_t shuffle) const {
  double largest = 0;
  for (std::size_t k = 0; k < freedoms_.size(); ++k) {
    const float* lanes = largest_.data() + (shuffle * freedoms_.size() + k) * kLanes;
    const auto value = static_cast<double>(*std::max_element(lanes, lanes + kLanes));
    largest = std::max(largest, pseudoT_ ? value : zOfT(tOfCorrelation(value, freedoms_[k]), freedoms_[k]));
  }
  return static_cast<float>(largest);
}

}  // namespace inference
