#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <map>
#include <set>

#include "formats/affine.h"
#include "formats/nifti.h"
#include "group/group_findings.h"
#include "inference/influence.h"
#include "prepare/grid.h"
#include "results/map_findings.h"
#include "tav/clusters.h"

namespace study {
namespace {

namespace fs = std::filesystem;

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

double valueAt(const std::vector<float>& map, std::size_t place) {
  return map.empty() ? kNoValue : withDigitsOf(map[place]);
}

// A list of places that belong together.
struct Found {
  const char* by;
  std::vector<std::size_t> places;
};

class PeakFinder {
 public:
  PeakFinder(const TestedGroup& test, fs::path outDir)
      : test_(test), outDir_(std::move(outDir)), grid_(gridOf(test.images.header)), finder_(grid_.size) {
    const inference::TestResult& result = test.result;
    massP_.assign(result.t.size(), result.nullMass.sorted.empty() ? kNoValue : 1.0);
    for (const inference::Cluster& cluster : result.clusters)
      for (const std::int32_t place : cluster.places) massP_[static_cast<std::size_t>(place)] = cluster.pFwe;
  }

  std::vector<GroupPeak> find() {
    std::vector<Found> found = clustersBelow("tfce", test_.result.pEnhanced);
    append(clustersBelow("maximum", test_.result.pFwe), found);
    append(clustersByMass(), found);
    if (found.empty()) found.push_back({"none", {largest()}});
    std::vector<GroupPeak> peaks;
    for (const Found& one : found) peaks.push_back(peakOf(one));
    addValues(peaks);
    return peaks;
  }

 private:
  static void append(std::vector<Found> more, std::vector<Found>& found) {
    std::move(more.begin(), more.end(), std::back_inserter(found));
  }

  [[nodiscard]] std::vector<Found> clustersBelow(const char* by, const std::vector<float>& p) {
    std::vector<tav::MapPoint> points;
    std::map<std::uint32_t, std::size_t> placeOf;
    for (std::size_t place = 0; place < p.size(); ++place) {
      if (!test_.inference.admits(p[place])) continue;
      const auto voxel = static_cast<std::uint32_t>(test_.images.voxels[place]);
      points.push_back({voxel, test_.result.t[place]});
      placeOf[voxel] = place;
    }
    std::vector<Found> found;
    for (const tav::Cluster& cluster : finder_.find(points, 0)) {
      Found& one = found.emplace_back(Found{by, {}});
      for (const tav::MapPoint& point : cluster.points) one.places.push_back(placeOf.at(point.voxel));
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Found& a, const Found& b) { return a.places.size() > b.places.size(); });
    return found;
  }

  [[nodiscard]] std::vector<Found> clustersByMass() const {
    std::vector<Found> found;
    for (const inference::Cluster& cluster : test_.result.clusters)
      if (cluster.pFwe <= test_.inference.level)
        found.push_back({"mass", {cluster.places.begin(), cluster.places.end()}});
    return found;
  }

  [[nodiscard]] float magnitude(std::size_t place) const {
    const float t = test_.result.t[place];
    return std::isnan(t) ? -1.0F : std::fabs(t);
  }
  [[nodiscard]] std::size_t largest() const {
    std::size_t best = 0;
    for (std::size_t place = 1; place < test_.result.t.size(); ++place)
      if (magnitude(place) > magnitude(best)) best = place;
    return best;
  }

  [[nodiscard]] GroupPeak peakOf(const Found& found) const {
    const std::size_t place =
        *std::max_element(found.places.begin(), found.places.end(),
                          [this](std::size_t a, std::size_t b) { return magnitude(a) < magnitude(b); });
    const inference::TestResult& result = test_.result;
    GroupPeak peak;
    peak.by = found.by;
    peak.voxel = grid_.size.voxelAt(test_.images.voxels[place]);
    peak.mm = grid_.toMm(peak.voxel);
    peak.voxels = found.places.size();
    peak.volumeMm3 = static_cast<double>(peak.voxels) * std::fabs(formats::determinant(grid_.affine));
    peak.effect = valueAt(result.effect, place);
    peak.t = valueAt(result.t, place);
    peak.z = valueAt(result.z, place);
    peak.pFwe = valueAt(result.pFwe, place);
    peak.pTfce = valueAt(result.pEnhanced, place);
    peak.pMass = massP_[place];
    peak.qFdr = valueAt(result.qFdr, place);
    peak.participants = result.rows[place];
    peak.directions = votesAt(test_.images.voxels[place]);
    return peak;
  }

  // Only maps of dTAV speak of directions, and only of one condition's.
  [[nodiscard]] DirectionVotes votesAt(std::size_t voxel) const {
    DirectionVotes votes;
    if (test_.cell.map->type != tav::DTAV || test_.cell.isDifference()) return votes;
    for (const std::size_t row : test_.design.rows) {
      const std::string& file = test_.cell.rows[row].plus.directions;
      const std::int32_t code = file.empty() ? 0 : directionsOf(file)[voxel];
      ++(code == 1   ? votes.referenceLeads
         : code == 2 ? votes.voxelLeads
         : code == 0 ? votes.notTested
                     : votes.notSupported);
    }
    return votes;
  }

  const std::vector<std::int32_t>& directionsOf(const std::string& file) const {
    const auto known = directions_.find(file);
    if (known != directions_.end()) return known->second;
    return directions_.emplace(file, formats::readLabelImage((outDir_ / file).string()).labels).first->second;
  }

  // Every kind's first peaks in turn, each voxel once.
  void addValues(std::vector<GroupPeak>& peaks) const {
    std::set<std::size_t> given;
    for (std::size_t rank = 0; rank < peaks.size() && given.size() < kPeaksWithValues; ++rank) {
      std::map<std::string, std::size_t> seen;
      for (GroupPeak& peak : peaks) {
        const std::size_t voxel = grid_.size.index(peak.voxel);
        if (seen[peak.by]++ != rank || given.size() == kPeaksWithValues || !given.insert(voxel).second)
          continue;
        peak.values = valuesAt(voxel);
      }
    }
  }

  [[nodiscard]] std::vector<GroupValue> valuesAt(std::size_t voxel) const {
    const auto& voxels = test_.images.voxels;
    const auto place =
        static_cast<std::size_t>(std::lower_bound(voxels.begin(), voxels.end(), voxel) - voxels.begin());
    const inference::Values values = test_.images.borrowed();
    const std::array<std::size_t, 1> places = {place};
    const auto without = inference::leaveOneOut(test_.design.model, values, places);
    std::vector<GroupValue> all;
    for (std::size_t row = 0; row < values.rows; ++row) {
      const float value = values.of(row, place);
      all.push_back({test_.cell.rows[test_.design.rows[row]].participant,
                     std::isnan(value) ? kNoValue : withDigitsOf(value), without[row][0].t});
    }
    return all;
  }

  const TestedGroup& test_;
  fs::path outDir_;
  Grid grid_;
  tav::ClusterFinder finder_;
  std::vector<double> massP_;                                            // per place
  mutable std::map<std::string, std::vector<std::int32_t>> directions_;  // by file
};

}  // namespace

std::vector<GroupPeak> groupPeaks(const TestedGroup& test, const fs::path& outDir) {
  return PeakFinder(test, outDir).find();
}

}  // namespace study
