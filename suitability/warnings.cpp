#include "suitability/warnings.h"

#include <cmath>
#include <optional>

#include "suitability/artefacts.h"
#include "suitability/drift.h"
#include "suitability/noise.h"
#include "suitability/shared_period.h"
#include "suitability/spectrum.h"
#include "suitability/whiteness.h"
#include "suitability/wording.h"

namespace suitability {
namespace {

constexpr std::size_t kMostVolumesNamed = 10;

using Texts = std::vector<std::string>;

std::string runOf(const SuitabilityInput& input) {
  return quoted("run", input.run);
}

std::string both(const SuitabilityInput& input) {
  return runOf(input) + ", " + quoted("reference", input.reference);
}

bool isAnyUsed(const Courses& courses, int volumes) {
  int volume = 0;
  while (volume < volumes && !courses.isUsed(volume)) ++volume;
  return volume < volumes;
}

void checkStart(const SuitabilityInput& input, const Courses& courses, int transient, Texts& texts) {
  if (!isAnyUsed(courses, transient)) return;
  texts.push_back(
      runOf(input) + ": the first " + counted(transient, "volume") + (transient == 1 ? " stands" : " stand") +
      " out in reference and voxels, as before the magnetisation is steady. What all voxels share "
      "looks like influence; set drop_volumes = " +
      std::to_string(input.droppedVolumes + transient));
}

void checkSpikes(const SuitabilityInput& input, const Courses& courses, int transient, Texts& texts) {
  std::vector<int> volumes = findSpikes(courses, transient);
  if (volumes.empty()) return;
  for (int& volume : volumes) volume += input.droppedVolumes + 1;
  const int count = static_cast<int>(volumes.size());
  texts.push_back(
      both(input) + ": reference and voxels jump at once at " + counted(count, "volume") + " (" +
      list(volumes, kMostVolumesNamed) +
      "), as when the head moves. Common spikes pass for influence between all places; censor them "
      "(fd_threshold) or regress the motion outliers (\"outliers\")");
}

std::string emptyWhere(const EmptyBands& bands) {
  std::string where;
  if (bands.belowHz) where = "below " + number(*bands.belowHz) + " Hz";
  if (bands.aboveHz) where += (where.empty() ? "" : " and ") + ("above " + number(*bands.aboveHz) + " Hz");
  return where;
}

// Barnett & Seth 2011, Journal of Neuroscience Methods 201, 404-419, doi:10.1016/j.jneumeth.2011.08.010.
void checkFilter(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  EmptyBands bands = findEmptyBands(courses);
  if (input.highPassed) bands.belowHz.reset();
  if (!bands.belowHz && !bands.aboveHz) return;
  texts.push_back(
      runOf(input) + " holds almost nothing " + emptyWhere(bands) +
      ": it was filtered in time. Filtering changes the lagged structure that the maps rest on and "
      "can create or hide directed influence; use unfiltered data");
}

void checkPeriod(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  const std::optional<SharedPeriod> shared = findSharedPeriod(courses);
  if (!shared) return;
  texts.push_back(both(input) + ": the reference and " + std::to_string(shared->voxels) + " of " +
                  std::to_string(courses.voxels.size()) + " sampled voxels share a period of " +
                  number(shared->seconds) +
                  " s, as a block design makes it. A common drive passes for influence of whatever responds "
                  "first; regress the task, or make its blocks conditions");
}

void checkDrift(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  const std::optional<double> share = input.highPassed ? std::nullopt : findDrift(courses);
  if (!share) return;
  texts.push_back(
      runOf(input) + ": " + percent(*share) + " of the median voxel's variance lies below " +
      number(kDriftHz) +
      " Hz, slow drift that detrending leaves. Drift that places share looks like influence at every "
      "lag; regress the cosine columns (\"cosine\"), or shorten the intervals, and compare the maps");
}

void checkWhiteness(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  const std::optional<NotWhite> found = findNotWhite(courses, input.order);
  if (!found) return;
  const std::string remedy =
      found->whiteOrder
          ? "take order " + std::to_string(*found->whiteOrder) + ", the lowest that leaves them white"
          : "no order up to " + std::to_string(kHighestOrder) +
                " leaves them white, so see the other warnings, and take the maps as a first look only";
  texts.push_back(
      both(input) + ": the reference's own model of order " + std::to_string(input.order) +
      " leaves residuals that are not white (Ljung-Box " + number(found->test.statistic) + " with " +
      counted(found->test.degrees, "degree") +
      " of freedom, p < 0.001). What the model misses of a series' own past can pass for influence "
      "of another; " +
      remedy);
}

void checkNoise(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  const std::optional<UnequalNoise> noise = findUnequalNoise(courses, input.order);
  if (!noise) return;
  const std::string figures = ": its own past predicts " + percent(noise->reference) +
                              " of its variance, but " + percent(noise->medianVoxel) +
                              " of the median voxel's";
  if (noise->referenceIsNoisier())
    texts.push_back(both(input) + ": the reference is noisier than the voxels" + figures +
                    ". Unequal noise alone then makes voxels seem to lead; take a larger or better placed "
                    "reference, and believe no lead that reversed time does not turn round");
  else
    texts.push_back(
        both(input) + ": the reference is much cleaner than the voxels" + figures +
        ". Unequal noise alone then makes the reference seem to lead; smooth the voxels or take a "
        "smaller reference, and believe no lead that reversed time does not turn round");
}

}  // namespace

std::vector<std::string> runWarnings(const SuitabilityInput& input) {
  Texts texts;
  const std::optional<Courses> courses =
      makeCourses(input.referenceSeries, input.voxels, input.intervals, input.trSeconds);
  if (!courses) return texts;
  const int transient = countTransientVolumes(*courses);
  checkStart(input, *courses, transient, texts);
  checkSpikes(input, *courses, transient, texts);
  checkFilter(input, *courses, texts);
  checkPeriod(input, *courses, texts);
  checkDrift(input, *courses, texts);
  checkWhiteness(input, *courses, texts);
  checkNoise(input, *courses, texts);
  return texts;
}

std::string fewSamplesWarning(const std::string& condition, const std::vector<SuitabilityInput>& runs) {
  double samples = 0;
  int order = 1;
  for (const SuitabilityInput& run : runs) {
    order = run.order;
    samples += effectiveSamples(run.intervals, order, static_cast<int>(run.referenceSeries.size()),
                                run.confoundRank);
  }
  const int coefficients = jointCoefficients(order);
  if (samples >= kSamplesPerCoefficient * coefficients) return "";
  return quoted("condition", condition) + ": " + std::to_string(std::lround(samples)) +
         " effective samples are left, without the first volumes of intervals and what regressed confounds "
         "cost, "
         "for " +
         std::to_string(coefficients) + " coefficients of the joint model of order " + std::to_string(order) +
         ", fewer than ten each. Estimates are noisy and measures too large; take a lower order, fewer "
         "confounds or "
         "more data";
}

}  // namespace suitability
