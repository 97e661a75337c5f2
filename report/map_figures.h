// The maps of one condition as mosaics with what they say.
#ifndef TAVMAP_REPORT_MAP_FIGURES_H
#define TAVMAP_REPORT_MAP_FIGURES_H

#include <string>
#include <vector>

#include "report/condition_view.h"
#include "report/underlay_sheet.h"

namespace report {

struct MapFigure {
  std::string html;  // a figure element
  std::string file;  // name of the picture beside the page
  std::string svg;   // the picture, complete in itself
};

// The picture beside the page of an image: "X.svg" for "X.nii.gz".
[[nodiscard]] std::string pictureFileOf(const std::string& image);

// underlay: in stored order, to choose slices by.
[[nodiscard]] std::vector<MapFigure> mapFigures(const StudyOutputs& outputs, const PageGrid& grid,
                                                const std::vector<float>& underlay,
                                                const UnderlaySheet& sheet, const ConditionView& view);

}  // namespace report

#endif
