// What the maps of a report lie on.
#ifndef TAVMAP_REPORT_UNDERLAY_H
#define TAVMAP_REPORT_UNDERLAY_H

#include <string>
#include <vector>

#include "report/page_grid.h"
#include "report/study_outputs.h"

namespace report {

struct Underlay {
  std::vector<float> values;  // in stored order
  std::string words;          // what it is
  double brightness = 1;      // of its white
};

// The anatomy on the grid of the maps when the request had one, else the runs' mean image, else the voxels
// that maps have values for. Throws formats::FileError.
[[nodiscard]] Underlay readUnderlay(const StudyOutputs& outputs, const PageGrid& grid);

}  // namespace report

#endif
