#include "live/reference.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "prepare/fingerprint.h"
#include "request/problem.h"

namespace live {
namespace {

using study::InputError;
using study::ReferenceKind;

constexpr const char* kWhere = "the reference";

// Names of files: no more digits than a place needs.
std::string coordinateText(double mm) {
  const double rounded = std::round(mm * 10) / 10;
  return fmt::format("{}", rounded == 0 ? 0 : rounded);
}

std::string sphereName(const Reference& reference) {
  return fmt::format("sphere {} {} {} r{}", coordinateText(reference.centreMm[0]),
                     coordinateText(reference.centreMm[1]), coordinateText(reference.centreMm[2]),
                     coordinateText(reference.radiusMm));
}

std::string drawingName(const Reference& reference) {
  study::Fingerprint key;
  for (const std::size_t cell : reference.cells) key.add("cell", static_cast<std::int64_t>(cell));
  return fmt::format("drawn {}", key.hex().substr(0, 8));
}

std::vector<std::array<int, 3>> voxelsOf(const Reference& reference, const study::Grid& grid) {
  std::vector<std::array<int, 3>> voxels;
  for (const std::size_t cell : reference.cells) {
    if (cell >= grid.size.voxels())
      throw InputError(fmt::format("{}: cell {} lies outside the runs' grid of {} voxels", kWhere, cell,
                                   grid.size.voxels()));
    const auto inPlane = static_cast<std::size_t>(grid.size.x) * static_cast<std::size_t>(grid.size.y);
    const auto x = static_cast<std::size_t>(grid.size.x);
    voxels.push_back(
        {static_cast<int>(cell % x), static_cast<int>(cell % inPlane / x), static_cast<int>(cell / inPlane)});
  }
  return voxels;
}

const study::Region& regionOfLabel(std::int32_t label, const Atlas* atlas) {
  if (atlas == nullptr)
    throw InputError(fmt::format("{}: there is no atlas; start with one (--atlas FILE)", kWhere));
  const auto found = atlas->regions.find(label);
  if (found == atlas->regions.end())
    throw InputError(
        fmt::format("{}: label {} is not in {}, or too little of it lies in the runs; choose another one",
                    kWhere, label, atlas->image.file));
  return found->second;
}

}  // namespace

study::ReferenceRequest entryOf(const Reference& reference, const Atlas* atlas, const study::Grid& grid) {
  study::ReferenceRequest entry;
  entry.kind = reference.kind;
  if (reference.kind == ReferenceKind::kLabels) {
    static_cast<void>(regionOfLabel(reference.label, atlas));
    entry = atlas->entry;
    entry.allLabels = false;
    entry.labels = {std::to_string(reference.label)};
  } else if (reference.kind == ReferenceKind::kSphere) {
    entry.name = sphereName(reference);
    entry.centreMm = reference.centreMm;
    entry.radiusMm = reference.radiusMm;
  } else {
    entry.name = drawingName(reference);
    entry.voxels = voxelsOf(reference, grid);
  }
  return entry;
}

study::Region regionOf(const Reference& reference, const Atlas* atlas, const study::RegionSpace& space) {
  if (reference.kind == ReferenceKind::kLabels) return regionOfLabel(reference.label, atlas);
  const study::ReferenceRequest entry = entryOf(reference, atlas, space.grid);
  if (reference.kind == ReferenceKind::kSphere) {
    if (!(reference.radiusMm > 0))
      throw InputError(fmt::format("{}: a sphere needs a radius above 0 mm", kWhere));
    return sphereRegion(entry, space, kWhere);
  }
  if (entry.voxels.empty()) throw InputError(fmt::format("{}: no voxel is drawn", kWhere));
  return voxelRegion(entry, space, kWhere);
}

}  // namespace live
