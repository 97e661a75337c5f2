#include "suitability/warnings.h"

#include <fmt/core.h>

#include <cmath>
#include <optional>

#include "suitability/drift.h"
#include "suitability/noise.h"
#include "suitability/shared_period.h"
#include "suitability/spectrum.h"
#include "suitability/whiteness.h"
#include "suitability/wording.h"

namespace suitability {
namespace {

constexpr std::size_t kMostVolumesNamed = 10;
constexpr int kUsualPeriodSeconds = 128;

using Texts = std::vector<std::string>;

std::string runOf(const SuitabilityInput& input) {
  return quoted("run", input.run);
}

std::string both(const SuitabilityInput& input) {
  return fmt::format("{}, {}", runOf(input), quoted("reference", input.reference));
}

bool isAnyUsed(const Courses& courses, int volumes) {
  int volume = 0;
  while (volume < volumes && !courses.isUsed(volume)) ++volume;
  return volume < volumes;
}

void checkStart(const SuitabilityInput& input, const Courses& courses, int transient, Texts& texts) {
  if (!isAnyUsed(courses, transient)) return;
  texts.push_back(
      fmt::format("{}: the first {}{} out in reference and voxels, as before the magnetisation is steady. "
                  "What all voxels share looks like influence; set drop_volumes = {}",
                  runOf(input), counted(transient, "volume"), transient == 1 ? " stands" : " stand",
                  input.droppedVolumes + transient));
}

void checkSpikes(const SuitabilityInput& input, std::vector<int> volumes, Texts& texts) {
  if (volumes.empty()) return;
  for (int& volume : volumes) volume += input.droppedVolumes + 1;
  const int count = static_cast<int>(volumes.size());
  texts.push_back(
      fmt::format("{}: reference and voxels jump at once at {} ({}), as when the head moves. Common spikes "
                  "pass for influence between all places; censor them (fd_threshold) or regress the motion "
                  "outliers (\"outliers\")",
                  both(input), counted(count, "volume"), list(volumes, kMostVolumesNamed)));
}

std::string emptyWhere(const EmptyBands& bands) {
  std::string where;
  if (bands.belowHz) where = fmt::format("below {} Hz", number(*bands.belowHz));
  if (bands.aboveHz)
    where += (where.empty() ? "" : " and ") + (fmt::format("above {} Hz", number(*bands.aboveHz)));
  return where;
}

// Barnett & Seth 2011, Journal of Neuroscience Methods 201, 404-419, doi:10.1016/j.jneumeth.2011.08.010.
void checkFilter(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  if (input.filtered) return;
  EmptyBands bands = findEmptyBands(courses);
  if (input.highPassed) bands.belowHz.reset();
  if (!bands.belowHz && !bands.aboveHz) return;
  texts.push_back(fmt::format(
      "{} holds almost nothing {}: it was filtered in time. Filtering changes the lagged structure that the "
      "maps rest on and can create or hide directed influence; use unfiltered data",
      runOf(input), emptyWhere(bands)));
}

void checkPeriod(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  const std::optional<SharedPeriod> shared = findSharedPeriod(courses);
  if (!shared) return;
  texts.push_back(
      fmt::format("{}: the reference and {} of {} sampled voxels share a period of {} s, as a block design "
                  "makes it. A common drive passes for influence of whatever responds first; regress the "
                  "task, or make its blocks conditions",
                  both(input), shared->voxels, courses.voxels.size(), number(shared->seconds)));
}

// Straight from the scanner, as far as anyone knows: then trends count too, since motion goes with them.
bool checkRawRun(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  if (input.confoundRank > 0 || input.filtered || input.highPassed) return false;
  const std::optional<double> share = findRawDrift(courses);
  if (!share) return false;
  texts.push_back(fmt::format(
      "{} looks raw: no confounds were regressed, nothing says that it was filtered, and {} of the "
      "median voxel's variance lies below {} Hz, trends with it. Drift and motion that places share "
      "look like influence at every lag; regress the motion of a confounds table (\"24motion\"), set "
      "high_pass = {} in [settings], and compare the maps",
      runOf(input), percent(*share), number(kDriftHz), kUsualPeriodSeconds));
  return true;
}

void checkDrift(const SuitabilityInput& input, const Courses& courses, Texts& texts) {
  if (checkRawRun(input, courses, texts)) return;
  const std::optional<double> share = input.highPassed ? std::nullopt : findDrift(courses);
  if (!share) return;
  texts.push_back(
      fmt::format("{}: {} of the median voxel's variance lies below {} Hz, slow drift that detrending "
                  "leaves. Drift that places share looks like influence at every lag; set high_pass = {} "
                  "in [settings], or shorten the intervals, and compare the maps",
                  runOf(input), percent(*share), number(kDriftHz), kUsualPeriodSeconds));
}

void checkWhiteness(const SuitabilityInput& input, const RunFindings& findings, Texts& texts) {
  if (!findings.residuals) return;
  const std::optional<NotWhite> found = findNotWhite(findings.courses, *findings.residuals);
  if (!found) return;
  const std::string remedy =
      found->whiteOrder ? fmt::format("take order {}, the lowest that leaves them white", *found->whiteOrder)
                        : fmt::format(
                              "no order up to {} leaves them white, so see the other warnings, and take the "
                              "maps as a first look only",
                              kHighestOrder);
  texts.push_back(
      fmt::format("{}: the reference's own model of order {} leaves residuals that are not white (Ljung-Box "
                  "{} with {} of freedom, p < 0.001). What the model misses of a series' own past can pass "
                  "for influence of another; {}",
                  both(input), input.order, number(found->test.statistic),
                  counted(found->test.degrees, "degree"), remedy));
}

void checkNoise(const SuitabilityInput& input, const RunFindings& findings, Texts& texts) {
  if (!findings.predictability) return;
  const std::optional<UnequalNoise> noise =
      findUnequalNoise(findings.courses, *findings.predictability, input.order);
  if (!noise) return;
  const std::string figures =
      fmt::format(": its own past predicts {} of its variance, but {} of the median voxel's",
                  percent(noise->reference), percent(noise->medianVoxel));
  if (noise->referenceIsNoisier())
    texts.push_back(
        fmt::format("{}: the reference is noisier than the voxels{}. Unequal noise alone then makes voxels "
                    "seem to lead; take a larger or better placed reference, and believe only leads "
                    "that the direction map (of DTAV) supports",
                    both(input), figures));
  else
    texts.push_back(
        fmt::format("{}: the reference is much cleaner than the voxels{}. Unequal noise alone then makes the "
                    "reference seem to lead; smooth the voxels or take a smaller reference, and believe only "
                    "leads that the direction map (of DTAV) supports",
                    both(input), figures));
}

}  // namespace

std::optional<RunFindings> findingsOf(const SuitabilityInput& input) {
  std::optional<Courses> courses =
      makeCourses(input.referenceSeries, input.voxels, input.intervals, input.trSeconds);
  if (!courses) return std::nullopt;
  return findIn(std::move(*courses), input.order);
}

std::vector<std::string> runWarnings(const SuitabilityInput& input,
                                     const std::optional<RunFindings>& findings) {
  Texts texts;
  if (!findings) return texts;
  const Courses& courses = findings->courses;
  checkStart(input, courses, findings->transientVolumes, texts);
  checkSpikes(input, findings->spikes, texts);
  checkFilter(input, courses, texts);
  checkPeriod(input, courses, texts);
  checkDrift(input, courses, texts);
  checkWhiteness(input, *findings, texts);
  checkNoise(input, *findings, texts);
  return texts;
}

std::vector<std::string> runWarnings(const SuitabilityInput& input) {
  return runWarnings(input, findingsOf(input));
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
  return fmt::format(
      "{}: {} effective samples are left, without the first volumes of intervals and what regressed "
      "confounds cost, for {} coefficients of the joint model of order {}, fewer than ten each. Estimates "
      "are noisy and measures too large; take a lower order, fewer confounds or more data",
      quoted("condition", condition), std::lround(samples), coefficients, order);
}

}  // namespace suitability
