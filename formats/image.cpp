#include "formats/image.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "formats/data_types.h"
#include "formats/file_error.h"

namespace formats {
namespace {

constexpr double kCornerTolerance = 0.05;  // of a voxel; headers keep four to seven digits

// How far a corner of the grid moves from one affine to the other, at most, in millimetres.
double largestCornerShift(const Affine& a, const Affine& b, const GridSize& size) {
  double largest = 0;
  for (unsigned corner = 0; corner < 8; ++corner) {
    const Point index{(corner & 1U) != 0 ? size.x - 1.0 : 0.0, (corner & 2U) != 0 ? size.y - 1.0 : 0.0,
                      (corner & 4U) != 0 ? size.z - 1.0 : 0.0};
    const Point p = apply(a, index), q = apply(b, index);
    largest = std::max(largest, std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]));
  }
  return largest;
}

}  // namespace

const char* nameOf(DataType type) {
  const char* name = "";
  withStoredType(type, [&](auto sample) { name = TypeName<decltype(sample)>::kText; });
  return name;
}

std::size_t bytesOf(DataType type) {
  std::size_t bytes = 0;
  withStoredType(type, [&](auto sample) { bytes = sizeof sample; });
  return bytes;
}

float Image3D::at(int x, int y, int z) const {
  return values[header.size.index(x, y, z)];
}

void requireSameGrid(const ImageHeader& a, const std::string& pathA, const ImageHeader& b,
                     const std::string& pathB) {
  if (a.size != b.size) {
    throw FileError(
        pathB,
        fmt::format("its grid of {} voxels is not that of {}, {}", toText(b.size), pathA, toText(a.size)),
        "Resample one of them to the grid of the other");
  }
  const Point voxel = voxelSize(a.affine);
  const double allowed = kCornerTolerance * std::min({voxel[0], voxel[1], voxel[2]});
  if (!(largestCornerShift(a.affine, b.affine, a.size) <= allowed)) {
    throw FileError(pathB,
                    fmt::format("its voxels do not lie where those of {} lie (the affines differ)", pathA),
                    "Resample one of them to the grid of the other");
  }
}

}  // namespace formats
