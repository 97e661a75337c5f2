#include "results/record_json.h"

#include <fmt/core.h>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "request/settings_table.h"
#include "results/json_fields.h"

namespace study {
namespace {

Json settingJson(const Setting& row, const Settings& settings) {
  return std::visit([](const auto& value) { return Json(value); }, valuesOf(row, settings).at(0));
}

// Reads one setting by the type of its member.
struct SettingReader {
  const JsonPlace& at;
  Settings& settings;

  template <typename T>
  void named(T Settings::*member, const std::optional<T>& value) const {
    if (!value) at.fail(fmt::format("\"{}\" is not known here", at.text()), FieldReader::kRemedy);
    settings.*member = *value;
  }
  void operator()(Method Settings::*m) const { named(m, methodNamed(at.text())); }
  void operator()(OrderChoice Settings::*m) const { named(m, orderChoiceNamed(at.text())); }
  template <typename T>
  void operator()(T Settings::*member) const {
    FieldReader::read(at, settings.*member);
  }
  // Lists are no part of records.
  void operator()(std::set<tav::MapType> Settings::*) const {}
};

template <typename Fields, typename Counts>
void describeCounts(Fields& fields, Counts& counts) {
  for (std::size_t code = 0; code < kStatusCodes; ++code) {
    fields(statusName(static_cast<StatusCode>(code)), counts[code]);
  }
}

void describeSetting(FieldWriter& fields, const Setting& row, const Settings& settings) {
  if (!isKept(row, settings.method)) return;
  fields.told(row.record.name, settingJson(row, settings));
  if (std::holds_alternative<Method Settings::*>(row.member)) {
    fields.told("MethodDescription", methodDescription(settings.method));
  }
}

void describeSetting(FieldReader& fields, const Setting& row, Settings& settings) {
  if (isKept(row, settings.method))
    std::visit(SettingReader{fields.at(row.record.name), settings}, row.member);
}

}  // namespace

// Looked up by their arguments, and so in the open namespace.

template <typename Fields>
void describe(Fields& fields, Of<Fields, ModelRecord>& model) {
  const std::vector<const Setting*> rows = recordedSettings();
  for (const Setting* row : rows) {
    if (row->record.place <= kLastPlaceOfModel) describeSetting(fields, *row, model.settings);
  }
  fields("Seed", model.seed);
  fields("SeedOfReference", model.seedOfReference);
  fields("SoftwareVersion", model.version);
  for (const Setting* row : rows) {
    if (row->record.place > kLastPlaceOfModel) describeSetting(fields, *row, model.settings);
  }
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, RunRecord>& run) {
  fields("Run", run.run);
  fields.unlessEmpty("ReferenceFromRun", run.referenceFromRun);
  fields("RepetitionTime", run.repetitionTime);
  fields("Volumes", run.volumes);
  fields("VolumesDropped", run.volumesDropped);
  fields("VolumesCensored", run.volumesCensored);
  fields("Intervals", run.intervals);
  fields("VolumesUsed", run.volumesUsed);
  fields("EffectiveVolumes", run.effectiveVolumes);
  fields("ConfoundsRegressed", run.confoundsRegressed);
  fields("ConfoundDegreesOfFreedom", run.confoundDegreesOfFreedom);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, ThresholdResult>& result) {
  fields("Q", result.q);
  fields("Threshold", result.threshold);
  fields.told("AnyVoxelPasses", result.voxelsPassing > 0);
  fields("VoxelsPassing", result.voxelsPassing);
  fields("VoxelsPassingOutsideReference", result.outsideReference);
}

template <typename Fields, typename Place>
void describePeak(Fields& fields, Place& place) {
  fields.inside("Peak", [&place](Fields& peak) {
    peak("Value", place.peak);
    peak("Voxel", place.peakVoxel);
    peak("Millimetres", place.peakMm);
    if constexpr (requires { place.peakLabel; }) peak.unlessEmpty("Label", place.peakLabel);
  });
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, ClusterResult>& cluster) {
  describePeak(fields, cluster);
  fields("Voxels", cluster.voxels);
  fields("Mass", cluster.mass);
  fields("P", cluster.p);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, FamilyWiseLevel>& level) {
  fields("P", level.alpha);
  fields("Threshold", level.threshold);
  fields("VoxelsPassing", level.voxelsPassing);
  fields("ClustersPassing", level.clustersPassing);
  fields("VoxelsInClustersPassing", level.voxelsInClusters);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, FamilyWiseResult>& result) {
  fields("Draws", result.draws);
  fields("ClusterFormingP", result.clusterFormingP);
  fields("ClusterFormingLevel", result.clusterFormingLevel);
  fields("VoxelFile", result.voxelFile);
  fields("ClusterFile", result.clusterFile);
  fields("Levels", result.levels);
  fields("NumberOfClusters", result.clusters);
  fields("Clusters", result.largest);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, MapResult>& map) {
  fields.choice("MapType", map.type, tav::MAPTYPE_NAMES, "map type");
  fields("File", map.file);
  fields.unlessEmpty("Thresholds", map.thresholds);
  describePeak(fields, map);
  fields.unlessEmpty("PassingFile", map.passingFile);
  fields.unlessEmpty("ThresholdedFile", map.thresholdedFile);
  fields.unlessEmpty("PFile", map.pFile);
  fields.unlessEmpty("ZFile", map.zFile);
  fields.unlessEmpty("ReversedFile", map.reversedFile);
  fields.unlessEmpty("FamilyWise", map.familyWise);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, DirectionResult>& direction) {
  fields("Q", direction.q);
  fields("File", direction.file);
  fields.told("VoxelsTested", direction.tested());
  fields.told("VoxelsSupported", direction.supported());
  fields.inside("Voxels", [&direction](Fields& voxels) {
    for (std::size_t code = 0; code < kDirectionCodes; ++code)
      voxels(directionName(static_cast<DirectionCode>(code)), direction.voxels[code]);
  });
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, ConditionRecord>& condition) {
  fields("Name", condition.name);
  fields("VolumesUsed", condition.volumesUsed);
  fields("EffectiveVolumes", condition.effectiveVolumes);
  fields("Runs", condition.runs);
  fields.inside("Voxels", [&condition](Fields& voxels) { describeCounts(voxels, condition.voxels); });
  fields("SurrogatesIllDefined", condition.surrogatesIllDefined);
  fields("StatusFile", condition.statusFile);
  fields("Maps", condition.maps);
  fields.unlessEmpty("Direction", condition.direction);
  fields.unlessEmpty("ClustersFile", condition.clustersFile);
  fields.unlessEmpty("EvidenceFile", condition.evidenceFile);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, InputRecord>& input) {
  fields("Kind", input.kind);
  fields("File", input.file);
  fields("SHA256", input.sha256);
}

// A kind has the entries that mean something for it.
template <typename Fields>
void describe(Fields& fields, Of<Fields, ReferenceSource>& source) {
  fields("Kind", source.kind);
  fields.unlessEmpty("Image", source.image);
  fields.unlessEmpty("Table", source.table);
  if (source.kind == "labels") fields("LabelIndex", source.labelIndex);
  fields.unlessEmpty("LabelName", source.labelName);
  fields.unlessEmpty("LabelRule", source.rule);
  fields.unlessEmpty("Grid", source.grid);
  fields.unlessEmpty("OnGridOfRuns", source.onGridOfRuns);
  if (source.kind != "sphere") return;
  fields("CentreMillimetres", source.centreMm);
  fields("RadiusMillimetres", source.radiusMm);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, Record>& record) {
  fields("Key", record.key);
  fields("Reference", record.reference);
  fields("ReferenceVoxels", record.referenceVoxels);
  fields.unlessEmpty("ReferenceSource", record.source);
  fields.unlessEmpty("Inputs", record.inputs);
  describe(fields, record.model);
  fields("Conditions", record.conditions);
  fields("Warnings", record.warnings);
  fields("Files", record.files);
}

Json recordJson(const Record& record) {
  return FieldWriter::written(record);
}

std::string recordText(const Record& record) {
  return recordJson(record).dump(2) + "\n";
}

Record recordFromText(const std::string& text, const std::string& path) {
  try {
    Record record;
    FieldReader::read(JsonPlace(formats::parseJson(text, path), path), record);
    return record;
  } catch (const formats::FileError& error) {
    throw formats::FileError(path, fmt::format("not a whole record ({})", error.reason()),
                             "Compute the result again");
  }
}

Record readRecordFile(const std::string& path) {
  return recordFromText(formats::readTextFile(path), path);
}

Json runsJson(const std::vector<RunRecord>& runs) {
  return FieldWriter::written(runs);
}

Json sourceJson(const ReferenceSource& source) {
  return FieldWriter::written(source);
}

Json inputsJson(const std::vector<InputRecord>& inputs) {
  return FieldWriter::written(inputs);
}

Json thresholdsJson(const std::vector<ThresholdResult>& thresholds) {
  return FieldWriter::written(thresholds);
}

Json directionJson(const DirectionResult& direction) {
  return FieldWriter::written(direction);
}

Json familyWiseJson(const FamilyWiseResult& result, bool withClusters) {
  Json json = FieldWriter::written(result);
  if (!withClusters) json.erase("Clusters");
  return json;
}

Json voxelsJson(const StatusCounts& counts) {
  Json json = Json::object();
  FieldWriter fields(json);
  describeCounts(fields, counts);
  return json;
}

void addModel(const ModelRecord& model, Json& json) {
  FieldWriter fields(json);
  describe(fields, model);
}

}  // namespace study
