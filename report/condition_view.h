// One condition of one reference as its pictures need it: the images of its maps in upright order.
#ifndef TAVMAP_REPORT_CONDITION_VIEW_H
#define TAVMAP_REPORT_CONDITION_VIEW_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "report/map_overlay.h"
#include "report/page_grid.h"
#include "report/study_outputs.h"

namespace report {

struct MapView {
  const study::MapResult* map = nullptr;
  std::size_t index = 0;         // in the record
  std::vector<float> values;     // NaN where nothing was computed
  std::vector<float> minusLogP;  // of single voxels; empty: there is none
  std::vector<std::uint8_t>
      clusters;  // 1: in a cluster whose family-wise p is at most study::kFamilyWiseAlpha
  OverlayScale scale;
};

struct ConditionView {
  std::size_t reference = 0, condition = 0;  // in the outputs
  const study::ConditionRecord* record = nullptr;
  std::vector<std::uint8_t> status;      // study::StatusCode
  std::vector<std::uint8_t> region;      // 1: a voxel of the reference
  std::vector<std::uint8_t> directions;  // study::DirectionCode; empty: there is no such map
  std::vector<MapView> maps;
};

// Throws formats::FileError when an image is missing, damaged or on another grid.
[[nodiscard]] ConditionView readConditionView(const StudyOutputs& outputs, const PageGrid& grid,
                                              std::size_t reference, std::size_t condition);

// One map alone. Throws formats::FileError.
[[nodiscard]] MapView readMapView(const StudyOutputs& outputs, const PageGrid& grid,
                                  const study::ConditionRecord& condition, std::size_t index);

}  // namespace report

#endif
