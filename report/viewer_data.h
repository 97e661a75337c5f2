// What the page's script draws from: the maps of all conditions, as JSON that names volumes, and the volumes.
#ifndef TAVMAP_REPORT_VIEWER_DATA_H
#define TAVMAP_REPORT_VIEWER_DATA_H

#include <cstdint>
#include <string>
#include <vector>

#include "report/condition_view.h"
#include "report/embedded_volumes.h"

namespace report {

struct ViewerPart {
  formats::Json json;   // of "views"
  std::string volumes;  // script elements
};

// mask: 1 for voxels that a map of any condition may have a value for, in upright order; others are left out.
[[nodiscard]] ViewerPart viewerPart(const StudyOutputs& outputs, const ConditionView& view,
                                    const std::vector<std::uint8_t>& mask, const EmbeddingPlan& plan);

// {"size": ..., "affine": ...}
[[nodiscard]] formats::Json gridJson(const PageGrid& grid);

}  // namespace report

#endif
