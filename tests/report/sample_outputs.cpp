#include "tests/report/sample_outputs.h"

#include <fmt/core.h>

#include <cmath>

#include "formats/atomic_file.h"
#include "formats/image.h"
#include "formats/nifti_writer.h"
#include "results/evidence_json.h"
#include "results/record_json.h"

namespace sample_outputs {
namespace {

namespace fs = std::filesystem;
using formats::Affine;

constexpr formats::GridSize kSize{24, 32, 14};
constexpr const char* kStem = "sample_seed-V1_";

// The grid's middle at 0, voxels of 2 x 1.6 x 3.6 mm.
Affine centred(const Affine& steps) {
  Affine affine = steps;
  for (int row = 0; row < 3; ++row)
    affine.at(row, 3) = -(steps.at(row, 0) * (kSize.x - 1) + steps.at(row, 1) * (kSize.y - 1) +
                          steps.at(row, 2) * (kSize.z - 1)) /
                        2;
  return affine;
}

Affine diagonal(double x, double y, double z) {
  Affine affine;
  affine.at(0, 0) = x;
  affine.at(1, 1) = y;
  affine.at(2, 2) = z;
  return affine;
}

bool isNear(const formats::Point& point, const std::array<double, 3>& centre, double within) {
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (std::abs(point[axis] - centre[axis]) > within) return false;
  return true;
}

// A value per voxel from its millimetres.
template <typename Value>
std::vector<float> volume(const Affine& affine, Value value) {
  std::vector<float> values;
  for (int k = 0; k < kSize.z; ++k)
    for (int j = 0; j < kSize.y; ++j)
      for (int i = 0; i < kSize.x; ++i)
        values.push_back(static_cast<float>(value(formats::apply(
            affine, {static_cast<double>(i), static_cast<double>(j), static_cast<double>(k)}))));
  return values;
}

constexpr double kMarkerEdge = 5;
constexpr std::array<double, 3> kReferenceMm = {14, 0, 0};

bool inMarker(const formats::Point& point) {
  return isNear(point, kMarkerMm, kMarkerEdge);
}
bool inReference(const formats::Point& point) {
  return isNear(point, kReferenceMm, 4);
}
bool inHead(const formats::Point& point) {
  return std::hypot(point[0] / 23, point[1] / 23, point[2] / 24) < 1;
}

int statusCode(const formats::Point& point) {
  if (!inHead(point)) return static_cast<int>(study::StatusCode::kOutsideMask);
  return static_cast<int>(inReference(point) ? study::StatusCode::kInsideReference
                                             : study::StatusCode::kComputed);
}

// Small values that differ from place to place.
double noise(const formats::Point& point) {
  return std::sin(point[0] + 2 * point[1] + 3 * point[2]);
}

void writeImage(const fs::path& file, const Affine& affine, const std::vector<float>& values) {
  formats::Image3D image;
  image.header.size = kSize;
  image.header.affine = affine;
  image.header.sformCode = 1;
  image.values = values;
  formats::writeImage(file.string(), image);
}

std::string mapFile(const char* label) {
  return fmt::format("{}contrast-faces{}_stat-effect_statmap.nii.gz", kStem, label);
}

std::size_t markerVoxels(const Affine& affine) {
  std::size_t count = 0;
  for (const float value : volume(affine, [](const formats::Point& p) { return inMarker(p) ? 1.0 : 0.0; }))
    count += value > 0 ? 1U : 0U;
  return count;
}

study::MapResult mapResult(const Sample& sample, tav::MapType type, const char* label) {
  study::MapResult map;
  map.type = type;
  map.file = mapFile(label);
  const bool passes = sample.survives && type == tav::DTAV;
  const std::size_t voxels = passes ? markerVoxels(sample.affine) : 0;
  for (const double q : {0.01, 0.05})
    map.thresholds.push_back({q, passes ? std::optional<double>(12.3456) : std::nullopt, voxels, voxels});
  map.peak = type == tav::DTAV ? 50 : 0.9921875;
  map.peakVoxel = markerVoxel(sample.affine);
  map.peakMm = formats::apply(sample.affine,
                              {static_cast<double>(map.peakVoxel[0]), static_cast<double>(map.peakVoxel[1]),
                               static_cast<double>(map.peakVoxel[2])});
  map.peakLabel = sample.label;
  if (type == tav::DTAV) map.pFile = fmt::format("{}contrast-facesdTAV_stat-p_statmap.nii.gz", kStem);
  return map;
}

study::StatusCounts statusCounts(const Sample& sample) {
  study::StatusCounts counts{};
  for (const float code : volume(sample.affine, statusCode)) ++counts[static_cast<std::size_t>(code)];
  return counts;
}

study::ConditionRecord conditionOf(const Sample& sample) {
  study::ConditionRecord condition;
  condition.name = sample.condition;
  condition.volumesUsed = 117;
  condition.effectiveVolumes = 115;
  condition.runs = {{"run1", "", 2.25, 120, 2, 1, {{3, 60}, {62, 120}}, 117, 115, {"csf"}, 1}};
  condition.voxels = statusCounts(sample);
  condition.statusFile = fmt::format("{}desc-facesStatus_dseg.nii.gz", kStem);
  condition.maps = {mapResult(sample, tav::REF2VOX, "Ref2Vox"), mapResult(sample, tav::DTAV, "dTAV")};
  if (sample.survives) {
    const std::size_t voxels = markerVoxels(sample.affine);
    condition.direction = {0.05, fmt::format("{}desc-facesDirection_dseg.nii.gz", kStem), {}};
    condition.direction.voxels[static_cast<std::size_t>(sample.direction)] = voxels;
  }
  condition.clustersFile = fmt::format("{}desc-faces_clusters.tsv", kStem);
  condition.evidenceFile = fmt::format("{}desc-faces_evidence.json", kStem);
  return condition;
}

std::string clusterRows(const study::ConditionRecord& condition, const Sample& sample) {
  std::string rows =
      "map\tq\tthreshold\tcluster\tsign\tvoxels\tvolume\tpeak\tpeak_i\tpeak_j\tpeak_k\tpeak_x\tpeak_y\tpeak_"
      "z\tpeak_label\t"
      "labels\n";
  if (!sample.survives) return rows;
  const study::MapResult& map = condition.maps[1];
  for (const study::ThresholdResult& threshold : map.thresholds)
    rows += fmt::format("DTAV\t{}\t12.3456\t1\tpositive\t{}\t{}\t50\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t100% {}\n",
                        threshold.q, threshold.outsideReference,
                        70.0 * static_cast<double>(threshold.outsideReference), map.peakVoxel[0],
                        map.peakVoxel[1], map.peakVoxel[2], map.peakMm[0], map.peakMm[1], map.peakMm[2],
                        sample.label, sample.label);
  return rows;
}

study::Evidence evidenceOf(const Sample& sample) {
  study::Evidence evidence{sample.reference, sample.condition, "1.2.3", {}, {}, {}};
  evidence.maps.push_back({tav::DTAV,
                           {{-10, 0, 10, 50}, {40, 41, 42}, {400, 410, 12}, 1, 2, 3, 4},
                           {128, 1.5, {1, 2, 8, 128}, {50, 49, 12.3456, 0.125}, {0.001, 0.002, 0.01, 0.9}}});
  study::RunEvidence run;
  run.run = "run1";
  run.repetitionTime = 2.25;
  run.volumes = 120;
  run.droppedVolumes = 2;
  run.censoredVolumes = {61};
  run.spectrum = {{3, 60},         {0.01, 0.02, 0.03}, {0.5, 0.3, 0.2}, 50,
                  {0.1, 0.1, 0.1}, {0.3, 0.3, 0.3},    {0.6, 0.5, 0.4}};
  run.residuals = {113, {0.25, -0.125}, {-0.01, -0.01}, 0.18, 21.5, 0.125, 18};
  run.predictability = {0.5, 0.25, 48};
  run.motion = {"framewise_displacement of the confounds", {std::nan(""), 0.125, 0.25}};
  evidence.runs.push_back(run);
  evidence.voxelsBySlice.fill(std::vector<std::size_t>(static_cast<std::size_t>(kSize.z), 0));
  evidence.voxelsBySlice[static_cast<std::size_t>(study::StatusCode::kIllDefined)][3] = 7;
  return evidence;
}

}  // namespace

Affine las() {
  return centred(diagonal(-2, 1.6, 3.6));
}

Affine ras() {
  return centred(diagonal(2, 1.6, 3.6));
}

Affine oblique() {
  constexpr double kAngle = 0.2;
  Affine affine = diagonal(0, 0, 3.6);
  affine.at(0, 0) = -2 * std::cos(kAngle);
  affine.at(1, 0) = -2 * std::sin(kAngle);
  affine.at(0, 1) = -1.6 * std::sin(kAngle);
  affine.at(1, 1) = 1.6 * std::cos(kAngle);
  return centred(affine);
}

std::array<int, 3> markerVoxel(const Affine& affine) {
  const formats::Point at = formats::apply(formats::inverse(affine), kMarkerMm);
  return {static_cast<int>(std::lround(at[0])), static_cast<int>(std::lround(at[1])),
          static_cast<int>(std::lround(at[2]))};
}

study::Record recordOf(const Sample& sample) {
  study::Record record;
  record.key = "0123abcd";
  record.reference = sample.reference;
  record.referenceVoxels = 44;
  record.source = {"sphere", "", "", 0, "", "", "", {kReferenceMm[0], kReferenceMm[1], kReferenceMm[2]}, 4};
  record.inputs = {{"run image", "bids:raw:run1_bold.nii.gz", std::string(64, 'a')}};
  record.model.settings.qValues = {0.01, 0.05};
  record.model.seed = 7001;
  record.model.seedOfReference = 7002;
  record.model.version = "1.2.3";
  record.conditions = {conditionOf(sample)};
  record.warnings = {sample.warning};
  return record;
}

void writeTo(const fs::path& folder, const Sample& sample) {
  fs::create_directories(folder);
  const study::Record record = recordOf(sample);
  const study::ConditionRecord& condition = record.conditions[0];
  const auto ofHead = [](auto value) {
    return [value](const formats::Point& p) { return inHead(p) ? value(p) : 0.0; };
  };
  writeImage(folder / condition.statusFile, sample.affine, volume(sample.affine, statusCode));
  writeImage(folder / condition.maps[0].file, sample.affine,
             volume(sample.affine, ofHead([](const auto& p) { return std::abs(noise(p)); })));
  const auto difference = [](const formats::Point& p) { return inMarker(p) ? 50.0 : noise(p); };
  writeImage(folder / condition.maps[1].file, sample.affine, volume(sample.affine, ofHead(difference)));
  writeImage(folder / condition.maps[1].pFile, sample.affine,
             volume(sample.affine, ofHead([](const auto& p) { return inMarker(p) ? 4.5 : 0.5; })));
  if (!condition.direction.empty())
    writeImage(folder / condition.direction.file, sample.affine,
               volume(sample.affine, [&](const formats::Point& p) {
                 return inMarker(p) ? static_cast<double>(sample.direction) : 0.0;
               }));
  writeImage(folder / "sample_desc-mean_boldref.nii.gz", sample.affine,
             volume(sample.affine, ofHead([](const auto& p) { return 800 + p[1] * 8; })));
  formats::writeTextFile((folder / condition.clustersFile).string(), clusterRows(condition, sample));
  formats::writeTextFile((folder / condition.evidenceFile).string(), study::evidenceText(evidenceOf(sample)));
  formats::writeTextFile((folder / (std::string(kStem) + "tavmap.json")).string(), study::recordText(record));
}

}  // namespace sample_outputs
