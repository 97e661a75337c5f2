#include "study/result_writer.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"
#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "formats/vtc_sidecar.h"
#include "request/problem.h"
#include "results/cluster_table.h"
#include "results/course_table.h"
#include "results/derived_map_json.h"
#include "results/evidence_json.h"
#include "results/map_findings.h"
#include "results/record_json.h"
#include "study/condition_evidence.h"
#include "study/condition_images.h"
#include "study/direction_check.h"
#include "study/label_map.h"
#include "study/nothing_computed.h"
#include "study/planned_result.h"
#include "study/reference_job.h"
#include "study/result_inputs.h"
#include "study/reversed_map.h"
#include "tav/tav.h"

namespace study {
namespace {

std::vector<std::uint8_t> insideRegion(const Region& region, const Grid& grid) {
  std::vector<std::uint8_t> inside(grid.size.voxels(), 0);
  for (std::size_t i = 0; i + 2 < region.coordinates.size(); i += 3) {
    inside[grid.size.index({region.coordinates[i], region.coordinates[i + 1], region.coordinates[i + 2]})] =
        1;
  }
  return inside;
}

// The part of a condition's time that its voxels take; its whole maps of surrogates take the rest.
double voxelShare(const Settings& settings) {
  constexpr double kOfEverything = 5;  // in draws: reading, the models without surrogates, thresholds
  const double voxels = kOfEverything + settings.nullDraws;
  return voxels / (voxels + settings.fweDraws);
}

// Name and size of every file of a result. A repeated command trusts a result only when they are
// all as they were, so that nothing but the record has to wait for the disk.
std::map<std::string, std::uintmax_t> fileSizes(const std::filesystem::path& folder) {
  std::map<std::string, std::uintmax_t> sizes;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    sizes[entry.path().filename().string()] = entry.file_size();
  }
  return sizes;
}

// Of a condition's progress, when its directions are tested: the share of the engine.
constexpr double kEngineShare = 0.9;

double engineShare(const Settings& settings) {
  const bool testsDirections =
      settings.method == Method::kCalibrated && settings.mapTypes.count(tav::DTAV) > 0;
  return testsDirections ? kEngineShare : 1;
}

}  // namespace

ResultWriter::ResultWriter(const StudyPlan& plan, const std::vector<std::size_t>& regions,
                           const std::vector<UsableRegion>& usable, std::function<void(double)> progress)
    : plan_(plan),
      regions_(regions),
      usable_(usable),
      progress_(std::move(progress)),
      header_(formats::readImageHeader(plan.runs[0].request.bold.string())),
      staging_(plan.request.output.folder, plan.request.output.prefix, plan.regionLabels[regions[0]]),
      store_(staging_.folder(), plan.workFolder / plan.runs[0].vtcName) {}

void ResultWriter::report(double conditionsDone) const {
  progress_(conditionsDone / static_cast<double>(plan_.conditions.size() * regions_.size()));
}

void ResultWriter::onProgress(int percent) {
  const auto& settings = plan_.request.settings;
  report(conditionsDone_ + engineShare(settings) * voxelShare(settings) * percent / 100.0);
}

void ResultWriter::onNullMaps(int percent) {
  const auto& settings = plan_.request.settings;
  const double before = voxelShare(settings);
  report(conditionsDone_ + engineShare(settings) * (before + (1 - before) * percent / 100.0));
}

OutputNames ResultWriter::names() const {
  return {plan_.request.output.prefix, plan_.regionLabels[region()]};
}

ResultContext ResultWriter::context() const {
  const Region& own = usable().region;
  return {plan_.request,
          plan_.runs,
          plan_.version,
          plan_.seed,
          plan_.order,
          cautionsOf(plan_, region(), result_.warnings),
          referenceSource(plan_.request, own),
          resultInputs(plan_, own)};
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
  requireComputed(index, condition);
  const ConditionImages images(plan_, staging_, names(), plan_.conditionLabels[index], header_, codes_);
  condition.maps = images.writeMaps(outcome);
  condition.clustersFile = images.writeClusters(outcome, condition.maps);
  lookAtData(outcome, plan_.conditionLabels[index], condition);
  result_.conditions.push_back(std::move(condition));
  report(++conditionsDone_);
}

void ResultWriter::writeStatus(const tav::ConditionOutcome& outcome, const std::string& label,
                               ConditionResult& condition) {
  const std::vector<std::uint8_t> inside = insideRegion(usable().region, plan_.runs[0].grid);
  codes_.resize(outcome.status.size());
  for (std::size_t i = 0; i < codes_.size(); ++i) {
    const bool inMask = plan_.space.mask.empty() || plan_.space.mask[i];
    const StatusCode code = statusOf(outcome.status[i], inMask, inside[i] != 0);
    codes_[i] = static_cast<std::uint8_t>(code);
    ++condition.statusCounts[codes_[i]];
  }
  condition.statusFile = names().status(label);
  writeLabelMap(staging_, condition.statusFile, names().statusTable(label), header_, codes_,
                codeNames<StatusCode, kStatusCodes>(statusName));
}

void ResultWriter::requireComputed(std::size_t index, const ConditionResult& condition) const {
  if (condition.statusCounts[static_cast<std::size_t>(StatusCode::kComputed)] > 0) return;
  std::vector<ConditionRun> runs = conditionRuns(plan_, region(), index, courses_);
  throw InputError(fmt::format("reference '{}', condition '{}': no voxel could be computed: {}",
                               usable().region.name, condition.name,
                               whyNothingIsComputed(runs, codes_, condition.effectiveVolumes, plan_.order)));
}

// What the same series say beside the maps: where data mislead, and which directions are supported. The
// plug-in's procedure neither warns nor tests.
void ResultWriter::lookAtData(const tav::ConditionOutcome& outcome, const std::string& label,
                              ConditionResult& condition) {
  std::vector<ConditionRun> runs =
      conditionRuns(plan_, region(), static_cast<std::size_t>(outcome.condIndex), courses_);
  const ConditionFindings findings =
      lookAtCondition(plan_, plan_.regions[region()].name, condition.name, runs, codes_);
  writeEvidence(outcome, label, runs, findings, condition);
  if (plan_.request.settings.method != Method::kCalibrated) return;
  warnings_.add(condition.name, findings.warnings);
  writeDirections(outcome, label, runs, condition);
  writeReversed(label, runs, condition);
}

void ResultWriter::writeReversed(const std::string& label, std::vector<ConditionRun>& runs,
                                 ConditionResult& condition) const {
  const auto map = std::find_if(condition.maps.begin(), condition.maps.end(),
                                [](const MapResult& one) { return one.type == tav::DTAV; });
  if (map == condition.maps.end()) return;
  map->reversedFile = names().reversed(label);
  formats::ImageHeader header = mapHeader(header_);
  header.description = "dTAV minus dTAV of reversed time";
  formats::NiftiWriter writer(staging_.path(map->reversedFile).string(), header,
                              formats::Durability::kCached);
  const std::vector<float> values = reversedMap(runs, plan_.order, plan_.request.settings.mapScale, codes_);
  writer.writeValues(values.data(), values.size());
  writer.commit();
}

void ResultWriter::writeEvidence(const tav::ConditionOutcome& outcome, const std::string& label,
                                 const std::vector<ConditionRun>& runs, const ConditionFindings& findings,
                                 ConditionResult& condition) const {
  condition.evidenceFile = names().evidence(label);
  writeText(condition.evidenceFile, evidenceText(conditionEvidence(plan_, outcome, runs, findings, codes_)));
}

void ResultWriter::writeDirections(const tav::ConditionOutcome& outcome, const std::string& label,
                                   std::vector<ConditionRun>& runs, ConditionResult& condition) {
  const auto tested = voxelsToTest(outcome.maps, plan_.request.settings.qValues, codes_);
  if (!tested) return;
  const std::vector<DirectionCode> found = testDirections(
      runs, plan_.order, seedOf(plan_, region()), tested->voxels,
      [this](double share) { report(conditionsDone_ + kEngineShare + (1 - kEngineShare) * share); });
  std::vector<std::uint8_t> codes(codes_.size(), 0);
  for (std::size_t i = 0; i < found.size(); ++i)
    codes[tested->voxels[i]] = static_cast<std::uint8_t>(found[i]);
  condition.direction.q = tested->q;
  condition.direction.file = names().direction(label);
  for (const std::uint8_t code : codes) ++condition.direction.voxels[code];
  writeLabelMap(staging_, condition.direction.file, names().directionTable(label), header_, codes,
                codeNames<DirectionCode, kDirectionCodes>(directionName));
}

void ResultWriter::writeJson(const std::string& file, const nlohmann::ordered_json& json) const {
  writeText(file, json.dump(2) + "\n");
}

void ResultWriter::writeText(const std::string& file, const std::string& text) const {
  formats::writeTextFile(staging_.path(file).string(), text, formats::Durability::kCached);
}

void ResultWriter::writeSidecars() {
  const ResultContext shared = context();
  for (const ConditionResult& condition : result_.conditions) {
    writeJson(OutputNames::sidecarOf(condition.statusFile), statusSidecar(shared, result_, condition));
    if (!condition.direction.empty())
      writeJson(OutputNames::sidecarOf(condition.direction.file),
                directionSidecar(shared, result_, condition));
    if (!condition.clustersFile.empty())
      writeJson(OutputNames::sidecarOf(condition.clustersFile),
                clusterSidecar(shared, result_, condition, plan_.places.get()));
    for (const MapResult& map : condition.maps) writeMapSidecars(shared, condition, map);
  }
}

void ResultWriter::writeMapSidecars(const ResultContext& shared, const ConditionResult& condition,
                                    const MapResult& map) {
  const nlohmann::ordered_json sidecar = mapSidecar(shared, result_, condition, map);
  writeJson(OutputNames::sidecarOf(map.file), sidecar);
  if (!map.passingFile.empty()) {
    writeJson(OutputNames::sidecarOf(map.passingFile), passingSidecar(shared, result_, condition, map));
    writeJson(OutputNames::sidecarOf(map.thresholdedFile), thresholdedSidecar(sidecar, map));
  }
  if (!map.pFile.empty()) writeJson(OutputNames::sidecarOf(map.pFile), nullPSidecar(sidecar, map));
  if (!map.reversedFile.empty())
    writeJson(OutputNames::sidecarOf(map.reversedFile), reversedSidecar(sidecar, map));
  if (!map.zFile.empty()) writeJson(OutputNames::sidecarOf(map.zFile), nullZSidecar(sidecar, map));
  if (map.familyWise.empty()) return;
  writeJson(OutputNames::sidecarOf(map.familyWise.voxelFile),
            familyWiseSidecar(sidecar, map, FamilyWiseImage::kVoxels));
  writeJson(OutputNames::sidecarOf(map.familyWise.clusterFile),
            familyWiseSidecar(sidecar, map, FamilyWiseImage::kClusters));
}

void ResultWriter::writeCourses(const OutputNames& names) {
  std::vector<CourseColumn> columns;
  for (const RunPlan& run : plan_.runs) {
    const auto found = courses_.find({plan_.regions[region()].name, run.vtcName});
    const auto sidecar = formats::readVtcSidecar((plan_.workFolder / run.vtcName).string());
    columns.push_back({run.request.name, run.volumes.volumes, run.volumes.dropped,
                       sidecar ? sidecar->shift : 0, found == courses_.end() ? nullptr : &found->second,
                       sidecar ? sidecar->scale : 1});
  }
  writeText(names.courses(), courseTable(columns));
  writeJson(OutputNames::sidecarOf(names.courses()),
            {{"Description", fmt::format("mean time course of {} after preparation, one column per run, one "
                                         "row per volume of the stored image",
                                         plan_.regions[region()].name)},
             {"ReferenceVoxels", usable().region.voxels()},
             {"SoftwareVersion", plan_.version}});
}

void ResultWriter::writeLog() const {
  writeText(store_.logFile(), store_.logText() + logAppendix(plan_, region(), result_));
}

void ResultWriter::onVoi(const tav::TAV_VOI_Pars& voi) {
  result_.name = voi.name;
  result_.voxels = usable().region.voxels();
  result_.seed = seedOf(plan_, region());
  result_.warnings = usable().notes;
  for (std::string& text : warnings_.texts()) result_.warnings.push_back(std::move(text));
  warnings_ = {};
  writeSidecars();
  writeCourses(names());
  writeLog();
  Record record = referenceRecord(context(), result_, resultKey(plan_, region()));
  record.files = fileSizes(staging_.folder());
  formats::writeTextFile(staging_.path(names().record()).string(), recordText(record));
  staging_.publish(names().record());
  result_ = {};
  ++current_;
}

}  // namespace study
