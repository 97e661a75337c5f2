#include "study/result_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "formats/atomic_file.h"
#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "formats/vtc_sidecar.h"
#include "study/reference_job.h"
#include "tav/tav.h"

namespace study {
namespace {

// The double with the digits of the float: 0.1F as 0.1, not as 0.10000000149.
double withDigitsOf(float value) {
  char text[32];
  *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
  return std::strtod(text, nullptr);
}

// Grid and affine of the runs; nothing of their intensities or times.
formats::ImageHeader resultHeader(const RunPlan& run) {
  formats::ImageHeader header = formats::readImageHeader(run.request.bold.string());
  header.volumes = 1;
  header.series = false;
  header.trMs = 0;
  header.slope = 1;
  header.intercept = 0;
  header.intentCode = 0;
  header.intentName.clear();
  header.extensions.clear();
  return header;
}

std::size_t passingOutside(const tav::MapOutcome& map, float threshold, const std::vector<std::uint8_t>& codes) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const bool outside = codes[i] != static_cast<std::uint8_t>(StatusCode::kInsideReference);
    if (outside && map.values[i] != 0 && std::abs(map.values[i]) >= threshold) ++count;
  }
  return count;
}

std::vector<ThresholdResult> thresholdsOf(const tav::MapOutcome& map, const std::vector<double>& qValues,
                                          const std::vector<std::uint8_t>& codes) {
  std::vector<ThresholdResult> results;
  for (std::size_t i = 0; i < map.thresholds.size(); ++i) {
    ThresholdResult result{qValues[i], std::nullopt, map.thresholds[i].nrPassing, 0};
    if (result.voxelsPassing > 0) result.outsideReference = passingOutside(map, map.thresholds[i].threshold, codes);
    if (std::isfinite(map.thresholds[i].threshold)) result.threshold = withDigitsOf(map.thresholds[i].threshold);
    results.push_back(result);
  }
  return results;
}

// The largest magnitude among computed voxels outside the reference; the first voxel when there is
// none. A voxel of the reference against its own mean is a degenerate case, not a finding.
std::size_t peakOf(const float* values, const std::vector<std::uint8_t>& codes) {
  std::size_t peak = 0;
  float largest = -1;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const float magnitude = std::abs(values[i]);
    const bool counts = codes[i] == static_cast<std::uint8_t>(StatusCode::kComputed);
    if (counts && magnitude > largest) largest = magnitude, peak = i;
  }
  return peak;
}

std::vector<std::uint8_t> insideRegion(const Region& region, const Grid& grid) {
  std::vector<std::uint8_t> inside(grid.voxels(), 0);
  for (std::size_t i = 0; i + 2 < region.coordinates.size(); i += 3) {
    inside[grid.index({region.coordinates[i], region.coordinates[i + 1], region.coordinates[i + 2]})] = 1;
  }
  return inside;
}

StatusCode statusOf(tav::VoxelStatus status, bool inMask, bool inReference) {
  switch (status) {
    case tav::VoxelStatus::kBelowInclusion: return inMask ? StatusCode::kBelowInclusion : StatusCode::kOutsideMask;
    case tav::VoxelStatus::kIllDefined: return StatusCode::kIllDefined;
    case tav::VoxelStatus::kNotFinite: return StatusCode::kNotFinite;
    case tav::VoxelStatus::kComputed: break;
  }
  return inReference ? StatusCode::kInsideReference : StatusCode::kComputed;
}

ConditionResult emptyResult(const PlannedCondition& planned) {
  ConditionResult condition;
  condition.name = planned.name;
  condition.totalVolumes = planned.totalVolumes;
  condition.effectiveVolumes = planned.effectiveVolumes;
  for (const PlannedSet& set : planned.sets) condition.sets.push_back({set.source, set.target, set.ranges});
  return condition;
}

std::string numberText(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

// Name and size of every file of a result. A repeated command trusts a result only when they are
// all as they were, so that nothing but the record has to wait for the disk.
nlohmann::ordered_json fileSizes(const std::filesystem::path& folder) {
  std::map<std::string, std::uintmax_t> sizes;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    sizes[entry.path().filename().string()] = entry.file_size();
  }
  return sizes;
}

std::string statusTableText() {
  std::string table = "index\tname\n";
  for (std::size_t code = 0; code < kStatusCodes; ++code) {
    table += std::to_string(code) + "\t" + statusName(static_cast<StatusCode>(code)) + "\n";
  }
  return table;
}

}  // namespace

ResultWriter::ResultWriter(const StudyPlan& plan, const std::vector<std::size_t>& regions,
                           std::function<void(int)> conditionDone)
    : plan_(plan), regions_(regions), conditionDone_(std::move(conditionDone)), header_(resultHeader(plan.runs[0])) {
  staging_ = std::make_unique<Staging>(plan.request.output.folder, plan.request.output.prefix,
                                       plan.regionLabels[regions[0]]);
}

ResultWriter::~ResultWriter() = default;

std::string ResultWriter::enginePrefix() const { return staging_->path(plan_.request.output.prefix).string(); }

OutputNames ResultWriter::names() const { return {plan_.request.output.prefix, plan_.regionLabels[region()]}; }

ResultContext ResultWriter::context() const {
  return {plan_.request, plan_.runs, plan_.version, plan_.seed, plan_.order, cautionsOf(plan_, region())};
}

void ResultWriter::onReferences(const std::vector<std::unique_ptr<tav::VoiTc>>& voiTcs) {
  for (const auto& voiTc : voiTcs) {
    const float* first = voiTc->tc.elements();
    courses_[{voiTc->voiName, voiTc->vtcName}] = {first, first + voiTc->tc.size()};
  }
}

void ResultWriter::onCondition(const tav::ConditionOutcome& outcome) {
  const std::size_t index = static_cast<std::size_t>(outcome.condIndex);
  ConditionResult condition = emptyResult(plan_.conditions[index]);
  condition.surrogatesIllDefined = outcome.counts.surrogatesIllDefined;
  writeStatus(outcome, plan_.conditionLabels[index], condition);
  for (const tav::MapOutcome& map : outcome.maps) {
    condition.maps.push_back(writeMap(map, plan_.conditionLabels[index]));
  }
  result_.conditions.push_back(std::move(condition));
  conditionDone_(++conditionsDone_);
}

MapResult ResultWriter::writeMap(const tav::MapOutcome& map, const std::string& label) {
  const Grid& grid = plan_.runs[0].grid;
  MapResult result;
  result.type = map.type;
  result.file = names().map(label, map.type);
  result.thresholds = thresholdsOf(map, plan_.request.settings.qValues, codes_);
  const std::size_t peak = peakOf(map.values, codes_);
  result.peak = withDigitsOf(map.values[peak]);
  result.peakVoxel = grid.voxelAt(peak);
  result.peakMm = grid.toMm(result.peakVoxel);
  formats::ImageHeader header = header_;
  header.dataType = formats::DataType::kFloat32;
  header.description = mapLabel(map.type);
  formats::NiftiWriter writer(staging_->path(result.file).string(), header, formats::Durability::kCached);
  writer.writeValues(map.values, grid.voxels());
  writer.commit();
  return result;
}

void ResultWriter::writeStatus(const tav::ConditionOutcome& outcome, const std::string& label,
                               ConditionResult& condition) {
  const std::vector<std::uint8_t> inside = insideRegion(plan_.regions[region()], plan_.runs[0].grid);
  codes_.resize(outcome.status.size());
  for (std::size_t i = 0; i < codes_.size(); ++i) {
    const bool inMask = plan_.space.mask.empty() || plan_.space.mask[i];
    const StatusCode code = statusOf(outcome.status[i], inMask, inside[i] != 0);
    codes_[i] = static_cast<std::uint8_t>(code);
    ++condition.statusCounts[codes_[i]];
  }
  condition.statusFile = names().status(label);
  formats::ImageHeader header = header_;
  header.dataType = formats::DataType::kUint8;
  header.intentCode = formats::kLabelIntent;
  formats::NiftiWriter writer(staging_->path(condition.statusFile).string(), header, formats::Durability::kCached);
  writer.writeStored(codes_.data(), codes_.size());
  writer.commit();
  writeText(names().statusTable(label), statusTableText());
}

void ResultWriter::writeJson(const std::string& file, const nlohmann::ordered_json& json) const {
  writeText(file, json.dump(2) + "\n");
}

void ResultWriter::writeText(const std::string& file, const std::string& text) const {
  formats::writeTextFile(staging_->path(file).string(), text, formats::Durability::kCached);
}

void ResultWriter::writeSidecars() {
  const ResultContext shared = context();
  for (const ConditionResult& condition : result_.conditions) {
    writeJson(OutputNames::sidecarOf(condition.statusFile), statusSidecar(shared, result_, condition));
    for (const MapResult& map : condition.maps) {
      writeJson(OutputNames::sidecarOf(map.file), mapSidecar(shared, result_, condition, map));
    }
  }
}

// One column per run, one row per volume of the stored image. The constant that preparation added
// to keep voxels above the inclusion threshold is taken off again.
void ResultWriter::writeCourses(const OutputNames& names) {
  std::string table;
  int rows = 0;
  std::vector<const std::vector<float>*> columns;
  std::vector<double> shifts;
  for (const RunPlan& run : plan_.runs) {
    table += (table.empty() ? "" : "\t") + run.request.name;
    rows = std::max(rows, run.volumes.volumes);
    const auto found = courses_.find({plan_.regions[region()].name, run.vtcName});
    columns.push_back(found == courses_.end() ? nullptr : &found->second);
    const auto sidecar = formats::readVtcSidecar(run.vtcName);
    shifts.push_back(sidecar ? sidecar->shift : 0);
  }
  table += "\n";
  for (int row = 0; row < rows; ++row) {
    for (std::size_t c = 0; c < columns.size(); ++c) {
      const int at = row - plan_.runs[c].volumes.dropped;
      const bool known = columns[c] != nullptr && at >= 0 && at < static_cast<int>(columns[c]->size());
      table += c > 0 ? "\t" : "";
      if (!known) {
        table += "n/a";
        continue;
      }
      const double value = static_cast<double>((*columns[c])[static_cast<std::size_t>(at)]) - shifts[c];
      table += numberText(withDigitsOf(static_cast<float>(value)));
    }
    table += "\n";
  }
  writeText(names.courses(), table);
  writeJson(OutputNames::sidecarOf(names.courses()),
            {{"Description", "mean time course of " + plan_.regions[region()].name +
                                 " after preparation, one column per run, one row per volume of the stored image"},
             {"ReferenceVoxels", plan_.regions[region()].voxels()},
             {"SoftwareVersion", plan_.version}});
}

void ResultWriter::appendToLog(const tav::TAV_VOI_Pars& voi) {
  std::string name = voi.name;
  std::replace_if(name.begin(), name.end(), [](char c) { return c == '/' || c == '\\'; }, '_');
  const std::string log = enginePrefix() + "_" + name + ".log";
  const std::string text = formats::readTextFile(log);
  formats::writeTextFile(log, text + logAppendix(plan_, region(), result_), formats::Durability::kCached);
}

void ResultWriter::onVoi(const tav::TAV_VOI_Pars& voi) {
  result_.name = voi.name;
  result_.voxels = plan_.regions[region()].voxels();
  result_.seed = seedOf(plan_, region());
  writeSidecars();
  writeCourses(names());
  appendToLog(voi);
  nlohmann::ordered_json record = referenceRecord(context(), result_, resultKey(plan_, region()));
  record["Files"] = fileSizes(staging_->folder());
  formats::writeTextFile(staging_->path(names().record()).string(), record.dump(2) + "\n");
  staging_->publish(names().record());
  result_ = {};
  ++current_;
}

}  // namespace study
