// A small picture of one map: three axial slices over the underlay.
#ifndef TAVMAP_REPORT_THUMBNAIL_H
#define TAVMAP_REPORT_THUMBNAIL_H

#include <cstddef>
#include <string>

#include "report/study_outputs.h"

namespace report {

// The map that stands for a condition: DTAV, or its first one. Unset without maps.
[[nodiscard]] const study::MapResult* mainMap(const study::ConditionRecord& condition);

// The bytes of a PNG file: the slice of the main map's peak in the middle. Throws formats::FileError.
[[nodiscard]] std::string thumbnail(const StudyOutputs& outputs, std::size_t reference,
                                    std::size_t condition);

}  // namespace report

#endif
