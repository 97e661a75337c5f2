// Where voxels lie, as pages get it.
#ifndef TAVMAP_WORKBENCH_AFFINE_JSON_H
#define TAVMAP_WORKBENCH_AFFINE_JSON_H

#include <nlohmann/json_fwd.hpp>

#include "formats/affine.h"

namespace workbench {

// Four rows of four: voxel indices from 0 to millimetres.
[[nodiscard]] nlohmann::ordered_json affineJson(const formats::Affine& affine);

}  // namespace workbench

#endif
