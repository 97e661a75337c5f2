#include "direction/control.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "simo/detrend.h"

namespace direction {
namespace {

std::optional<double> dtavOf(simo::PairFit& fit, const simo::LaggedMoments& xx, const simo::LaggedMoments& yy,
                             const simo::LaggedMoments& xy) {
  const auto errors = fit.errors(xx, yy, xy);
  if (!errors) return std::nullopt;
  const simo::Feedback feedback = simo::PairFit::feedback(*errors);
  return feedback.xToY - feedback.yToX;
}

}  // namespace

Control::Control(int order, const std::vector<int>& lengths) : moments_(order), fit_(order) {
  for (const int length : lengths) {
    surrogates_.push_back(std::make_unique<ZeroPhaseSurrogates>(length));
    for (auto* const series : {&references_, &voxels_, &drawn_})
      series->emplace_back(static_cast<std::size_t>(length));
  }
}

void Control::loadRuns(const std::vector<RunSeries>& runs) {
  for (std::size_t run = 0; run < runs.size(); ++run) {
    // Without anything left the models are degenerate.
    const int length = static_cast<int>(runs[run].reference.size());
    (void)simo::detrendRow(runs[run].reference.data(), length, references_[run].data());
    (void)simo::detrendRow(runs[run].voxel.data(), length, voxels_[run].data());
    surrogates_[run]->begin(references_[run], voxels_[run]);
  }
}

// Moments of the voxel with this reference over all intervals.
void Control::addReference(const std::vector<RunSeries>& runs,
                           const std::vector<std::vector<double>>& references) {
  for (simo::LaggedMoments* const moments : {&moments_.xx, &moments_.yy, &moments_.xy}) moments->clear();
  for (std::size_t run = 0; run < runs.size(); ++run) {
    for (const Interval& interval : *runs[run].intervals) {
      const auto first = static_cast<std::size_t>(interval.first),
                 length = static_cast<std::size_t>(interval.length);
      x_.resize(length);
      y_.resize(length);
      (void)simo::detrendRow(references[run].data() + first, interval.length, x_.data());
      (void)simo::detrendRow(voxels_[run].data() + first, interval.length, y_.data());
      moments_.xx.add(x_.data(), x_.data(), interval.length);
      moments_.yy.add(y_.data(), y_.data(), interval.length);
      moments_.xy.add(x_.data(), y_.data(), interval.length);
    }
  }
}

std::optional<Control::Differences> Control::differences() {
  const auto forwards = dtavOf(fit_, moments_.xx, moments_.yy, moments_.xy);
  const auto backwards = dtavOf(fit_, moments_.xx.reversed(), moments_.yy.reversed(), moments_.xy.reversed());
  if (!forwards || !backwards) return std::nullopt;
  return Differences{*forwards, *forwards - *backwards};
}

std::optional<Verdict> Control::judge(const std::vector<RunSeries>& runs, simo::RandomStream& random) {
  loadRuns(runs);
  addReference(runs, references_);
  const auto own = differences();
  if (!own) return std::nullopt;
  Verdict verdict{own->difference, own->dtav, 0};
  for (int draw = 0; draw < kSurrogates; ++draw) {
    for (std::size_t run = 0; run < runs.size(); ++run) surrogates_[run]->draw(random, drawn_[run]);
    addReference(runs, drawn_);
    const auto null = differences();
    if (!null) return std::nullopt;
    if (std::abs(null->difference) >= std::abs(own->difference)) ++verdict.reached;
  }
  return verdict;
}

}  // namespace direction
