// A small picture of one map: three axial slices over the underlay.
#ifndef TAVMAP_REPORT_THUMBNAIL_H
#define TAVMAP_REPORT_THUMBNAIL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "report/page_grid.h"
#include "report/study_outputs.h"
#include "report/underlay.h"

namespace report {

// The map that stands for a condition: DTAV, or its first one. Unset without maps.
[[nodiscard]] const study::MapResult* mainMap(const study::ConditionRecord& condition);

// Of the conditions of one request, which share grid and underlay.
class Thumbnails {
 public:
  // The outputs must have a condition and live as long. Throws formats::FileError.
  explicit Thumbnails(const StudyOutputs& outputs);
  // The bytes of a PNG file: the slice of the main map's peak in the middle. Throws formats::FileError.
  [[nodiscard]] std::string of(std::size_t reference, std::size_t condition) const;

 private:
  const StudyOutputs& outputs_;
  PageGrid grid_;
  Underlay underlay_;
  std::vector<std::uint8_t> levels_;  // grey, upright
};

}  // namespace report

#endif
