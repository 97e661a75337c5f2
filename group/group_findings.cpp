#include "group/group_findings.h"

#include <fmt/core.h>

#include <cmath>
#include <limits>

namespace study {
namespace {

GroupCounts countWithin(const GroupInference& inference, const std::vector<float>& p,
                        const std::vector<float>& t) {
  GroupCounts counts;
  for (std::size_t place = 0; place < p.size(); ++place) {
    if (!inference.admits(p[place])) continue;
    ++(t[place] < 0 ? counts.negative : counts.positive);
  }
  return counts;
}

GroupCounts countClusters(const inference::TestResult& result, double level) {
  GroupCounts counts;
  for (const inference::Cluster& cluster : result.clusters)
    if (cluster.pFwe <= level) ++(cluster.sign < 0 ? counts.negative : counts.positive);
  return counts;
}

void extremes(const std::vector<float>& t, GroupTestRecord& record) {
  for (const float one : t) {
    if (std::isnan(one)) continue;
    record.largestT = std::max(record.largestT, static_cast<double>(one));
    record.smallestT = std::min(record.smallestT, static_cast<double>(one));
  }
}

std::string symmetryWarning(const inference::Symmetry& symmetry, bool isDifference) {
  const char* const remedy = isDifference
                                 ? "look at the values at the peaks: single participants may make them"
                                 : "test a difference between conditions, sessions or groups instead, which "
                                   "is symmetric when nothing "
                                   "differs, or look at the values at the peaks";
  return fmt::format(
      "values of participants are not symmetric about their mean (skewness {:.2f} on average, {:.2f} by "
      "region where "
      "symmetric values have {:.2f}, p = {:.2g}), which sign flips rest on: small p on the side of the long "
      "tail can "
      "be wrong; {}",
      symmetry.meanSkewness, symmetry.regionalSkewness, symmetry.expected, symmetry.p, remedy);
}

std::string spreadWarning(const inference::Spread& spread) {
  return fmt::format(
      "the two groups do not vary alike (standard deviation of the first is {:.2f} times that of the second, "
      "p = {:.2g}), which permutations rest on: small p can come from spread alone, most so where the "
      "smaller "
      "group varies more; look at the values at the peaks, which show both groups",
      spread.ratio, spread.p);
}

}  // namespace

void countFindings(const TestedGroup& test, GroupTestRecord& record) {
  const inference::TestResult& result = test.result;
  record.voxelsTested = result.tested;
  record.voxelsWithoutAll = result.t.size() - result.tested;
  extremes(result.t, record);
  record.tAtFwe = result.tAtFwe05;
  record.tAtQ = result.tAtQ05;
  record.byMaximum = countWithin(test.inference, result.pFwe, result.t);
  record.byTfce = countWithin(test.inference, result.pEnhanced, result.t);
  record.byFdr = countWithin(test.inference, result.qFdr, result.t);
  record.byMass = countClusters(result, test.inference.level);
  record.symmetryP = result.symmetry ? result.symmetry->p : std::nan("");
  record.meanSkewness = result.symmetry ? result.symmetry->meanSkewness : std::nan("");
  record.spreadRatio = result.spread ? result.spread->ratio : std::nan("");
  record.spreadP = result.spread ? result.spread->p : std::nan("");
  record.shuffles = result.shuffles;
  record.isExhaustive = result.isExhaustive;
  record.isTailSmooth = result.nullZ.tail.has_value();
  record.freedom = result.freedom;
}

std::vector<std::string> groupWarnings(const TestedGroup& test) {
  const inference::TestResult& result = test.result;
  std::vector<std::string> warnings;
  if (result.symmetry && result.symmetry->isDoubtful())
    warnings.push_back(symmetryWarning(*result.symmetry, test.cell.isDifference()));
  if (result.spread && result.spread->isDoubtful()) warnings.push_back(spreadWarning(*result.spread));
  if (1.0 / static_cast<double>(result.shuffles) > test.inference.level) {
    warnings.push_back(
        fmt::format("there are only {} ways to exchange these participants, so that no p can be below "
                    "{:.3g}: more participants are "
                    "needed",
                    result.shuffles, 1.0 / static_cast<double>(result.shuffles)));
  }
  const std::size_t untested = result.t.size() - result.tested;
  if (untested * 4 > result.t.size()) {
    warnings.push_back(fmt::format(
        "{} of {} voxels are not tested since fewer than {:.0f} % of the participants have a value there; a "
        "look at the "
        "image with the number of participants shows who is missing; smallest_share allows for fewer",
        untested, result.t.size(), 100 * test.inference.smallestShare));
  }
  return warnings;
}

}  // namespace study
