#include "suitability/run_findings.h"

#include <utility>

#include "suitability/artefacts.h"

namespace suitability {

RunFindings findIn(Courses courses, int order) {
  RunFindings found{std::move(courses), 0, {}, {}, {}};
  found.transientVolumes = countTransientVolumes(found.courses);
  found.spikes = findSpikes(found.courses, found.transientVolumes);
  found.residuals = ownResiduals(found.courses, order);
  found.predictability = predictabilities(found.courses, order);
  return found;
}

}  // namespace suitability
