#include "inference/run_test.h"

#include <fmt/core.h>

#include <stdexcept>

#include "inference/group_results.h"
#include "inference/observed.h"
#include "inference/shuffles.h"
#include "inference/sweep.h"
#include "inference/tested_places.h"

namespace inference {

namespace {

void checkSizes(const Model& model, const Values& values, const Space& space) {
  if (model.rows() != values.rows)
    throw std::invalid_argument(
        fmt::format("The model has {} rows for {} maps; it wants a row per map.", model.rows(), values.rows));
  if (space.places != values.places)
    throw std::invalid_argument(fmt::format("The space has {} places, the maps have {}; both want the same.",
                                            space.places, values.places));
}

void checkOptions(const TestOptions& options, const Space& space) {
  if (!(options.smallestShare > 0 && options.smallestShare <= 1))
    throw std::invalid_argument(
        fmt::format("A share of {} of the rows is none; take one above 0, up to 1.", options.smallestShare));
  if (!(options.varianceFwhmMm >= 0) || !(options.clusterFormingZ >= 0))
    throw std::invalid_argument("The width of smoothing and the cluster-forming Z are 0 or more.");
  if (options.varianceFwhmMm > 0 && !space.isOfVoxels())
    throw std::invalid_argument(
        "Variances are smoothed over voxels, and this space has none; set the width to 0.");
  const Enhancement& e = options.enhancement;
  if (!(e.extentPower >= 0) || !(e.heightPower >= 0) || !(e.step >= 0))
    throw std::invalid_argument("The powers of enhancement and its step are 0 or more.");
}

}  // namespace

TestResult runTest(const Model& model, const Values& values, const Space& space, const TestOptions& options) {
  checkModel(model);
  checkSizes(model, values, space);
  checkOptions(options, space);
  const Shuffles shuffles(model, options.exchange, options.blocks, options.shuffles, options.seed);
  const TestedPlaces places = testedPlaces(model, values, options);
  if (places.slots() == 0)
    throw std::invalid_argument(
        fmt::format("No place can be tested: everywhere fewer than {:.0f} % of the maps have values, these "
                    "do not tell the "
                    "contrast, or they do not vary.",
                    100 * options.smallestShare));
  const Space slots = renumbered(space, places.placeOfSlot);
  const Observed observed = observe(places, slots, options);
  const Swept swept = sweep({model, places, shuffles, slots, options, observed});
  return groupResult({model, values, places, shuffles, options, observed, swept});
}

}  // namespace inference
