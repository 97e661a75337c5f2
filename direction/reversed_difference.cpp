#include "direction/reversed_difference.h"

#include <cstddef>

#include "simo/detrend.h"

namespace direction {
namespace {

std::optional<double> dtav(simo::PairFit& fit, const simo::LaggedMoments& xx, const simo::LaggedMoments& yy,
                           const simo::LaggedMoments& xy) {
  const auto errors = fit.errors(xx, yy, xy);
  if (!errors) return std::nullopt;
  const simo::Feedback feedback = simo::PairFit::feedback(*errors);
  return feedback.xToY - feedback.yToX;
}

}  // namespace

ReversedDifference::ReversedDifference(int order, const std::vector<ReferenceRun>& runs)
    : xx_(order), xxReversed_(order), yy_(order), xy_(order), fit_(order) {
  for (std::size_t run = 0; run < runs.size(); ++run) {
    for (const Interval& interval : runs[run].intervals) {
      Part& part = parts_.emplace_back(Part{run, interval, {}});
      part.reference.resize(static_cast<std::size_t>(interval.length));
      (void)simo::detrendRow(runs[run].reference.data() + interval.first, interval.length,
                             part.reference.data());
      xx_.add(part.reference.data(), part.reference.data(), interval.length);
    }
  }
  xxReversed_ = xx_.reversed();
}

std::optional<double> ReversedDifference::of(const std::vector<std::vector<float>>& voxel) {
  yy_.clear();
  xy_.clear();
  for (const Part& part : parts_) {
    y_.resize(part.reference.size());
    (void)simo::detrendRow(voxel[part.run].data() + part.interval.first, part.interval.length, y_.data());
    yy_.add(y_.data(), y_.data(), part.interval.length);
    xy_.add(part.reference.data(), y_.data(), part.interval.length);
  }
  const auto forwards = dtav(fit_, xx_, yy_, xy_);
  const auto backwards = dtav(fit_, xxReversed_, yy_.reversed(), xy_.reversed());
  if (!forwards || !backwards) return std::nullopt;
  return *forwards - *backwards;
}

}  // namespace direction
