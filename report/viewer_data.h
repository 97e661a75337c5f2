// What the page's script draws from: the maps of all conditions, as JSON that names volumes, and the volumes.
#ifndef TAVMAP_REPORT_VIEWER_DATA_H
#define TAVMAP_REPORT_VIEWER_DATA_H

#include <cstdint>
#include <string>
#include <vector>

#include "report/condition_view.h"
#include "report/embedded_volumes.h"

namespace report {

// 1 for voxels that a map may have a value for, in upright order: those of no condition are left out of maps.
[[nodiscard]] std::vector<std::uint8_t> voxelsOfMaps(const std::vector<std::uint8_t>& statusOfAny);

struct ViewerPart {
  formats::Json json;   // of "views"
  std::string volumes;  // script elements
};

// mask: as voxelsOfMaps() made it.
[[nodiscard]] ViewerPart viewerPart(const StudyOutputs& outputs, const ConditionView& view,
                                    const std::vector<std::uint8_t>& mask, const EmbeddingPlan& plan);

// {"size": ..., "affine": ...}
[[nodiscard]] formats::Json gridJson(const PageGrid& grid);

}  // namespace report

#endif
