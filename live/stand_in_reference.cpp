#include "live/stand_in_reference.h"

#include <fmt/core.h>

#include <array>
#include <optional>

#include "formats/nifti.h"
#include "request/problem.h"

namespace live {
namespace {

using Voxel = std::array<int, 3>;

Voxel middleOf(const io::GridSize& size) {
  return {size.x / 2, size.y / 2, size.z / 2};
}

int squaredDistance(const Voxel& a, const Voxel& b) {
  int sum = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) sum += (a[axis] - b[axis]) * (a[axis] - b[axis]);
  return sum;
}

Voxel nearestToMiddle(const formats::Image3D& mask, const std::string& file) {
  const io::GridSize size = mask.header.size;
  const Voxel middle = middleOf(size);
  std::optional<Voxel> best;
  for (int z = 0; z < size.z; ++z) {
    for (int y = 0; y < size.y; ++y) {
      for (int x = 0; x < size.x; ++x) {
        const Voxel voxel{x, y, z};
        if (mask.values[size.index(x, y, z)] == 0) continue;
        if (!best || squaredDistance(voxel, middle) < squaredDistance(*best, middle)) best = voxel;
      }
    }
  }
  if (!best) throw study::InputError(fmt::format("{}: the mask has no voxel; give another one", file));
  return *best;
}

Voxel standInVoxel(const study::RunRequest& run) {
  if (run.mask.empty()) return middleOf(formats::readImageHeader(run.bold.string()).size);
  return nearestToMiddle(formats::readImage(run.mask.string()), run.mask.string());
}

}  // namespace

study::Request withStandIn(study::Request request) {
  study::ReferenceRequest entry;
  entry.kind = study::ReferenceKind::kVoxels;
  entry.name = "stand-in";
  entry.voxels = {standInVoxel(request.runs.at(0))};
  request.references = {entry};
  return request;
}

}  // namespace live
