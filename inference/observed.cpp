#include "inference/observed.h"

#include <cmath>
#include <limits>

#include "inference/lanes.h"
#include "inference/t_distribution.h"

namespace inference {

namespace {

// Sums of floats in another order differ by less.
constexpr double kRounding = 2e-6;

}  // namespace

Observed observe(const TestedPlaces& places, const Space&, const TestOptions& options) {
  Observed observed{.t = places.t,
                    .z = LaneFloats(places.slots(), 0.0F),
                    .bounds = LaneFloats(places.slots(), std::numeric_limits<float>::infinity())};
  for (const LaneSpan& span : places.spans) {
    const int freedom = places.splits[span.split].freedom;
    for (std::size_t slot = span.begin * kLanes; slot < span.end * kLanes; ++slot) {
      if (places.placeOfSlot[slot] < 0) continue;
      const double r = correlationOfT(places.t[slot], freedom);
      observed.z[slot] = static_cast<float>(zOfT(places.t[slot], freedom));
      observed.bounds[slot] = static_cast<float>((options.twoSided ? std::abs(r) : r) - kRounding);
    }
  }
  return observed;
}

}  // namespace inference
