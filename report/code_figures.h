// Images of codes as mosaics: whose direction is supported, and why voxels have no value.
#ifndef TAVMAP_REPORT_CODE_FIGURES_H
#define TAVMAP_REPORT_CODE_FIGURES_H

#include "report/map_figures.h"

namespace report {

// Of a condition that has a direction map.
[[nodiscard]] MapFigure directionFigure(const StudyOutputs& outputs, const PageGrid& grid,
                                        const std::vector<float>& underlay, const UnderlaySheet& sheet,
                                        const ConditionView& view);
[[nodiscard]] MapFigure statusFigure(const StudyOutputs& outputs, const PageGrid& grid,
                                     const std::vector<float>& underlay, const UnderlaySheet& sheet,
                                     const ConditionView& view);

}  // namespace report

#endif
