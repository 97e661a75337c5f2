#include "study/condition_images.h"

#include "formats/atomic_file.h"
#include "formats/nifti_writer.h"
#include "results/cluster_table.h"
#include "results/family_wise_findings.h"
#include "results/map_findings.h"
#include "study/label_map.h"

namespace study {

std::vector<MapResult> ConditionImages::writeMaps(const tav::ConditionOutcome& outcome) const {
  std::vector<MapResult> results;
  for (const tav::MapOutcome& map : outcome.maps) {
    MapResult& result = results.emplace_back(writeEffect(map));
    if (!result.thresholds.empty()) writePassing(map, result);
    if (!map.nullP.empty()) {
      result.pFile = names_.nullP(label_, map.type);
      writeImage(result.pFile, std::string("-log10 p of ") + mapLabel(map.type),
                 minusLogP(map, codes_).data());
    }
    if (!map.nullZ.empty()) {
      result.zFile = names_.nullZ(label_, map.type);
      writeImage(result.zFile, std::string(mapLabel(map.type)) + " z", zImage(map, codes_).data());
    }
    const auto nulls = outcome.familyWise.find(map.type);
    if (nulls != outcome.familyWise.end()) result.familyWise = writeFamilyWise(map, nulls->second);
  }
  return results;
}

MapResult ConditionImages::writeEffect(const tav::MapOutcome& map) const {
  MapResult result;
  result.type = map.type;
  result.file = names_.map(label_, map.type);
  result.thresholds = thresholdsOf(map, plan_.request.settings.qValues, codes_);
  const std::size_t peak = peakOf(map.values, codes_);
  result.peak = withDigitsOf(map.values[peak]);
  result.peakVoxel = grid().size.voxelAt(peak);
  result.peakMm = grid().toMm(result.peakVoxel);
  if (plan_.places != nullptr) result.peakLabel = plan_.places->nameAt(peak);
  writeImage(result.file, mapLabel(map.type), map.values);
  return result;
}

void ConditionImages::writePassing(const tav::MapOutcome& map, MapResult& result) const {
  const PlacedMap placed{map.values, codes_, grid(), plan_.places.get()};
  const std::vector<std::uint8_t> levels = passedLevels(placed, result.thresholds);
  result.passingFile = names_.passing(label_, map.type);
  writeLabelMap(staging_, result.passingFile, names_.passingTable(label_, map.type), run_, levels,
                passingNames(result.thresholds));
  result.thresholdedFile = names_.thresholded(label_, map.type);
  writeImage(result.thresholdedFile, std::string(mapLabel(map.type)) + " thresholded",
             thresholdedMap(map.values, levels).data());
}

FamilyWiseResult ConditionImages::writeFamilyWise(const tav::MapOutcome& map,
                                                  const tav::NullMaxima& nulls) const {
  const JudgedMap judged{map.values, codes_, nulls};
  const std::vector<tav::Cluster> clusters = clustersOf(judged, grid());
  FamilyWiseResult result = familyWiseResult(judged, clusters, grid(), plan_.request.settings.qValues);
  result.voxelFile = names_.voxelP(label_, map.type);
  result.clusterFile = names_.clusterP(label_, map.type);
  const std::string name = mapLabel(map.type);
  writeImage(result.voxelFile, name + " family-wise p", voxelP(judged).data());
  writeImage(result.clusterFile, name + " family-wise p of clusters", clusterP(judged, clusters).data());
  return result;
}

std::string ConditionImages::writeClusters(const tav::ConditionOutcome& outcome,
                                           const std::vector<MapResult>& maps) const {
  tav::ClusterFinder finder(grid().size);
  ClusterTable table;
  bool isAny = false;
  for (std::size_t i = 0; i < maps.size(); ++i) {
    const PlacedMap placed{outcome.maps[i].values, codes_, grid(), plan_.places.get()};
    for (const ThresholdResult& level : maps[i].thresholds) {
      isAny = true;
      if (const auto threshold = usedThreshold(level))
        table.add(maps[i].type, level, placedClusters(placed, *threshold, finder));
    }
  }
  if (!isAny) return "";
  const std::string file = names_.clusters(label_);
  formats::writeTextFile(staging_.path(file).string(), table.text(), formats::Durability::kCached);
  return file;
}

// values: of every voxel of the grid.
void ConditionImages::writeImage(const std::string& file, const std::string& description,
                                 const float* values) const {
  formats::ImageHeader header = mapHeader(run_);
  header.description = description;
  formats::NiftiWriter writer(staging_.path(file).string(), header, formats::Durability::kCached);
  writer.writeValues(values, grid().size.voxels());
  writer.commit();
}

}  // namespace study
