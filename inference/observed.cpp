#include "inference/observed.h"

#include <cmath>
#include <limits>

#include "inference/cluster_finder.h"
#include "inference/enhancer.h"
#include "inference/lanes.h"
#include "inference/pseudo_t.h"
#include "inference/t_distribution.h"

namespace inference {

namespace {

// Sums of floats in another order differ by less: of correlations, and relative to a pseudo-t.
constexpr double kRoundingOfZ = 2e-6, kPseudoRounding = 1e-5;

double counted(double value, const TestOptions& options) {
  return options.twoSided ? std::abs(value) : value;
}

template <typename Use>
void forEachSlot(const TestedPlaces& places, Use use) {
  for (const LaneSpan& span : places.spans)
    for (std::size_t slot = span.begin * kLanes; slot < span.end * kLanes; ++slot)
      if (places.placeOfSlot[slot] >= 0) use(slot, places.splits[span.split].freedom);
}

void setPlain(const TestedPlaces& places, const TestOptions& options, Observed& observed) {
  observed.t = places.t;
  forEachSlot(places, [&](std::size_t slot, int freedom) {
    const double t = places.t[slot];
    observed.z[slot] = static_cast<float>(zOfT(t, freedom));
    observed.bounds[slot] = static_cast<float>(counted(correlationOfT(t, freedom), options) - kRoundingOfZ);
  });
}

void setSmoothed(const TestedPlaces& places, const Space& slots, const TestOptions& options,
                 Observed& observed) {
  forEachSlot(places, [&](std::size_t slot, int freedom) {
    observed.z[slot] = static_cast<float>(correlationOfT(places.t[slot], freedom));
  });
  const LaneFloats noSquares(places.slots(), 0.0F);
  PseudoT(places, slots, options.varianceFwhmMm).divide(observed.z.data(), noSquares.data());
  observed.t.assign(observed.z.begin(), observed.z.end());
  forEachSlot(places, [&](std::size_t slot, int) {
    const double t = observed.t[slot];
    observed.bounds[slot] = static_cast<float>(counted(t, options) - kPseudoRounding * std::abs(t));
  });
}

}  // namespace

Observed observe(const TestedPlaces& places, const Space& slots, const TestOptions& options) {
  Observed observed{.t = {},
                    .z = LaneFloats(places.slots(), 0.0F),
                    .bounds = LaneFloats(places.slots(), std::numeric_limits<float>::infinity()),
                    .enhanced = {},
                    .clusters = {}};
  if (options.varianceFwhmMm > 0) {
    setSmoothed(places, slots, options, observed);
  } else {
    setPlain(places, options, observed);
  }
  if (options.enhance)
    observed.enhanced = Enhancer(slots, options.enhancement).enhance(observed.z, options.twoSided);
  if (options.clusterFormingZ > 0)
    observed.clusters = ClusterFinder(slots, options.clusterFormingZ).find(observed.z, options.twoSided);
  return observed;
}

}  // namespace inference
