#include "tests/calibration/written_results.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "formats/nifti.h"
#include "results/results.h"

namespace calibration {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using study::StatusCode;

// The voxels of one map with what is known of them.
struct Voxels {
  std::vector<float> values;
  std::vector<std::int32_t> status;
  const std::vector<bool>& driven;

  [[nodiscard]] bool has(std::size_t voxel, StatusCode code) const {
    return status[voxel] == static_cast<int>(code);
  }
};

Discoveries countPassing(const Voxels& voxels, const Json& threshold) {
  Discoveries found;
  found.q = threshold.at("Q").get<double>();
  found.driven = static_cast<int>(std::count(voxels.driven.begin(), voxels.driven.end(), true));
  found.computed = static_cast<int>(
      std::count(voxels.status.begin(), voxels.status.end(), static_cast<int>(StatusCode::kComputed)));
  if (!threshold.at("AnyVoxelPasses").get<bool>()) return found;
  const float least = threshold.at("Threshold").get<float>();
  for (std::size_t i = 0; i < voxels.values.size(); ++i) {
    if (voxels.values[i] == 0 || !(std::abs(voxels.values[i]) >= least)) continue;
    if (voxels.has(i, StatusCode::kInsideReference)) ++found.inReference;
    if (voxels.has(i, StatusCode::kComputed)) ++(voxels.driven[i] ? found.truly : found.falsely);
  }
  return found;
}

// The plug-in's search counts the reference's voxels, the calibrated one does not.
void requireCounts(const Discoveries& found, const Json& threshold, bool countsReference,
                   const std::string& map) {
  const int outside = found.truly + found.falsely;
  const int counted = outside + (countsReference ? found.inReference : 0);
  if (threshold.at("VoxelsPassing") == counted && threshold.at("VoxelsPassingOutsideReference") == outside)
    return;
  throw std::runtime_error(map + ": " + std::to_string(outside) + " voxels outside the reference and " +
                           std::to_string(found.inReference) + " inside pass, but the record says " +
                           threshold.dump());
}

}  // namespace

std::vector<Discoveries> readDiscoveries(const fs::path& record, const std::vector<bool>& driven) {
  std::ifstream stream(record);
  const Json json = Json::parse(stream);
  const auto pathOf = [&](const Json& name) {
    return (record.parent_path() / name.get<std::string>()).string();
  };
  const bool countsReference = json.at("Method") == "plugin";
  std::vector<Discoveries> all;
  for (const Json& condition : json.at("Conditions")) {
    const std::vector<std::int32_t> status =
        formats::readLabelImage(pathOf(condition.at("StatusFile"))).labels;
    for (const Json& map : condition.at("Maps")) {
      const std::string file = pathOf(map.at("File"));
      const Voxels voxels{formats::readImage(file).values, status, driven};
      for (const Json& threshold : map.at("Thresholds")) {
        Discoveries found = countPassing(voxels, threshold);
        requireCounts(found, threshold, countsReference, file);
        found.condition = condition.at("Name").get<std::string>();
        all.push_back(found);
      }
    }
  }
  return all;
}

}  // namespace calibration
