// What the checks of one run find, for warnings and for reports alike.
#ifndef TAVMAP_SUITABILITY_RUN_FINDINGS_H
#define TAVMAP_SUITABILITY_RUN_FINDINGS_H

#include <optional>
#include <vector>

#include "suitability/courses.h"
#include "suitability/noise.h"
#include "suitability/whiteness.h"

namespace suitability {

// Volumes are those of the prepared run, from 0.
struct RunFindings {
  Courses courses;                                 // that were looked at
  int transientVolumes = 0;                        // at the start (artefacts.h)
  std::vector<int> spikes;                         // in common (artefacts.h)
  std::optional<OwnResiduals> residuals;           // none: nothing to test
  std::optional<Predictabilities> predictability;  // none: it cannot be judged
};

// order: of the models.
[[nodiscard]] RunFindings findIn(Courses courses, int order);

}  // namespace suitability

#endif
