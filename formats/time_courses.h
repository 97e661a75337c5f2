// From volume-major stored values to time courses of the output type, in blocks that stay in the
// caches.
#ifndef TAVMAP_FORMATS_TIME_COURSES_H
#define TAVMAP_FORMATS_TIME_COURSES_H

#include <cstddef>
#include <cstdint>

#include "formats/data_types.h"
#include "formats/series_store.h"

namespace formats {

// How stored values become output values. Out: float, or uint16 (rounded half to even).
struct StoredForm {
  DataType type;
  bool swapped;     // stored in the other byte order
  Scaling scaling;  // a shift of the values is part of the intercept
};

// Converts `count` values in a row. False when one does not fit the output type (NaN does not fit
// an integer); it is then stored as 0.
template <typename Out>
[[nodiscard]] bool convertRow(const StoredForm& form, const char* stored, std::size_t count, Out* out);

// out[v * volumes + t] = converted value of voxel v at volume t, for `voxels` voxels of the slab
// from voxel `first` on. False as for convertRow. Allocates nothing.
template <typename Out>
[[nodiscard]] bool toTimeCourses(const StoredForm& form, const SeriesSlab& slab, std::size_t first,
                                 std::size_t voxels, std::size_t volumes, Out* out);

extern template bool convertRow(const StoredForm&, const char*, std::size_t, float*);
extern template bool convertRow(const StoredForm&, const char*, std::size_t, std::uint16_t*);
extern template bool toTimeCourses(const StoredForm&, const SeriesSlab&, std::size_t, std::size_t,
                                   std::size_t, float*);
extern template bool toTimeCourses(const StoredForm&, const SeriesSlab&, std::size_t, std::size_t,
                                   std::size_t, std::uint16_t*);

}  // namespace formats

#endif
