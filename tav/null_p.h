// How unusual each value of a map is among the values of surrogates.
#ifndef TAVMAP_TAV_NULL_P_H
#define TAVMAP_TAV_NULL_P_H

#include <vector>

#include "tav/map_source.h"

namespace tav {

// Per observed value (1 + the number of null values of at least its magnitude) / (1 + M), M being the number
// of null values (Phipson & Smyth 2010, Statistical Applications in Genetics and Molecular Biology 9,
// doi:10.2202/1544-6115.1585). The null values of all voxels serve every voxel, as they do in the search for
// thresholds. Zeros, which stand for what could not be computed, and values that are not finite are no null
// values; observed ones get NaN. All 1 when there is no null value.
//
// Cost: a sort of the observed values, and a step of a search among them per null value.
[[nodiscard]] std::vector<float> nullPValues(const MapSource& observed, const MapSource& null);

}  // namespace tav

#endif
