#include "results/local_peaks.h"

#include <algorithm>
#include <cmath>

namespace study {
namespace {

double distanceMm(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

class PeakSearch {
 public:
  PeakSearch(const tav::Cluster& cluster, const Grid& grid) : cluster_(cluster), grid_(grid) {}

  std::vector<tav::MapPoint> peaks() {
    std::vector<tav::MapPoint> byHeight = cluster_.points;
    std::sort(byHeight.begin(), byHeight.end(), isHigher);
    std::vector<tav::MapPoint> found = {byHeight[0]};
    for (const tav::MapPoint& point : byHeight) {
      if (found.size() > kFurtherPeaks) break;
      if (isApart(point, found) && isLocalPeak(point)) found.push_back(point);
    }
    return found;
  }

 private:
  [[nodiscard]] std::array<double, 3> mmOf(const tav::MapPoint& point) const {
    return grid_.toMm(grid_.size.voxelAt(point.voxel));
  }

  // Affines come in single precision: steps of 4 mm may be a little less.
  [[nodiscard]] bool isApart(const tav::MapPoint& point, const std::vector<tav::MapPoint>& found) const {
    constexpr double kTolerance = 1e-4;
    return std::all_of(found.begin(), found.end(), [&](const tav::MapPoint& peak) {
      return distanceMm(mmOf(point), mmOf(peak)) >= kPeakDistanceMm - kTolerance;
    });
  }

  [[nodiscard]] bool isLocalPeak(const tav::MapPoint& point) const {
    const auto [x, y, z] = grid_.size.voxelAt(point.voxel);
    for (int k = z - 1; k <= z + 1; ++k) {
      for (int j = y - 1; j <= y + 1; ++j) {
        if (grid_.size.contains(x, j, k) && isLowerThanOneOf(point, x, j, k)) return false;
      }
    }
    return true;
  }

  // Than one of the points at (x - 1 ... x + 1, j, k).
  [[nodiscard]] bool isLowerThanOneOf(const tav::MapPoint& point, int x, int j, int k) const {
    const std::size_t first = grid_.size.index(std::max(x - 1, 0), j, k);
    const std::size_t last = grid_.size.index(std::min(x + 1, grid_.size.x - 1), j, k);
    auto other = std::lower_bound(cluster_.points.begin(), cluster_.points.end(), first,
                                  [](const tav::MapPoint& p, std::size_t voxel) { return p.voxel < voxel; });
    for (; other != cluster_.points.end() && other->voxel <= last; ++other) {
      if (isHigher(*other, point)) return true;
    }
    return false;
  }

  const tav::Cluster& cluster_;
  const Grid& grid_;
};

}  // namespace

bool isHigher(const tav::MapPoint& a, const tav::MapPoint& b) {
  const float first = std::abs(a.value), second = std::abs(b.value);
  return first != second ? first > second : a.voxel < b.voxel;
}

std::vector<tav::MapPoint> peaksOf(const tav::Cluster& cluster, const Grid& grid) {
  return PeakSearch(cluster, grid).peaks();
}

}  // namespace study
