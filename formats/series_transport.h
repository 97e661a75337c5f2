// The inner part of an import: the volumes of an image become the time courses of a VTC.
#ifndef TAVMAP_FORMATS_SERIES_TRANSPORT_H
#define TAVMAP_FORMATS_SERIES_TRANSPORT_H

#include <cstddef>
#include <vector>

#include "formats/nifti_stream.h"
#include "formats/time_courses.h"
#include "formats/voxel_runs.h"
#include "formats/vtc_writer.h"

namespace formats {

struct SeriesTransport {
  StoredForm form;      // with the constant that is added inside the mask
  std::size_t volumes;  // 2 or more
  VtcType type;
  std::size_t memoryBytes;  // for the values of the series; above: through the file of `writer`
};

// `opening` holds the first volumes as stored, whole ones; the stream stands before the next. Voxels
// outside `kept` become 0. The stream is read to its end. Throws FileError. False: a value inside
// does not fit the type; the courses are then not all written.
[[nodiscard]] bool transportSeries(const SeriesTransport& transport, const std::vector<char>& opening,
                                   NiftiStream& stream, const VoxelRuns& kept, VtcWriter& writer);

}  // namespace formats

#endif
