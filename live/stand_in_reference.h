// A reference for requests that have none yet, so that they can be planned.
#ifndef TAVMAP_LIVE_STAND_IN_REFERENCE_H
#define TAVMAP_LIVE_STAND_IN_REFERENCE_H

#include "request/request.h"

namespace live {

// The request with one reference: the voxel of the first run's mask that is nearest to the middle of its
// grid, without a mask the middle. Throws formats::FileError, and study::InputError for an empty mask.
[[nodiscard]] study::Request withStandIn(study::Request request);

}  // namespace live

#endif
