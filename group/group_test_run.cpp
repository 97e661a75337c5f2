#include "group/group_test_run.h"

#include <fmt/core.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/nifti_writer.h"
#include "group/group_findings.h"
#include "group/group_images.h"
#include "group/group_names.h"
#include "group/group_tables.h"
#include "group/test_design.h"
#include "prepare/fingerprint.h"
#include "request/problem.h"
#include "results/map_findings.h"
#include "results/output_names.h"

namespace study {
namespace {

namespace fs = std::filesystem;

constexpr float kNone = std::numeric_limits<float>::quiet_NaN();

const char* exchangeName(inference::Exchange exchange) {
  return exchange == inference::Exchange::kSignFlips ? "sign flips" : "permutations";
}

// What is settled before any map is read.
GroupTestRecord plannedRecord(const GroupQuestion& question, const GroupCell& cell,
                              const GroupInference& inference, const GroupDesign& design,
                              const std::string& version) {
  GroupTestRecord record;
  record.version = version;
  record.test = question.name;
  record.question = design.words;
  record.task = cell.task;
  record.session = cell.session;
  record.reference = cell.reference;
  record.condition = cell.condition;
  record.sessions = cell.sessions;
  record.map = cell.map->label;
  record.within = question.within;
  record.contrast = question.contrast;
  record.isZ = cell.map->values == GroupValues::kZ;
  record.isTwoSided = !record.isZ || question.contrast != "mean" || !question.within.empty();
  record.columns = design.model.columns;
  record.weights = design.model.contrast;
  record.blocks = design.blocks;
  record.inference = inference;
  record.exchange = exchangeName(design.exchange);
  record.leftOut = cell.leftOut;
  record.leftOut.insert(record.leftOut.end(), design.leftOut.begin(), design.leftOut.end());
  return record;
}

void addRows(const GroupCell& cell, const GroupDesign& design, GroupTestRecord& record) {
  const std::size_t width = design.model.columns.size();
  for (std::size_t i = 0; i < design.rows.size(); ++i) {
    const CellRow& from = cell.rows[design.rows[i]];
    GroupRow row{from.participant, design.levels.empty() ? "" : design.levels[i], {}, {from.plus.image}};
    const auto first = design.model.design.begin() + static_cast<std::ptrdiff_t>(i * width);
    row.design.assign(first, first + static_cast<std::ptrdiff_t>(width));
    if (!from.minus.image.empty()) row.images.push_back(from.minus.image);
    record.rows.push_back(std::move(row));
  }
}

std::string keyOf(const GroupTestRecord& planned, const GroupCell& cell, const GroupDesign& design) {
  Fingerprint key;
  key.add("planned", groupRecordText(planned));
  for (const std::size_t row : design.rows)
    key.add("plus", cell.rows[row].plus.key).add("minus", cell.rows[row].minus.key);
  return key.hex();
}

inference::TestOptions testOptions(const GroupTestRecord& record, const GroupDesign& design,
                                   const GroupRunOptions& options) {
  const GroupInference& asked = record.inference;
  inference::TestOptions test;
  test.exchange = design.exchange;
  test.blocks = design.blocks;
  test.shuffles = asked.shuffles;
  test.seed = asked.seed;
  test.twoSided = record.isTwoSided;
  test.varianceFwhmMm = asked.varianceFwhmMm;
  test.enhance = asked.enhance;
  test.clusterFormingZ = asked.clusterFormingZ;
  test.smallestShare = asked.smallestShare;
  test.threads = options.threads;
  if (options.progress) {
    test.progress = [progress = options.progress](std::size_t done, std::size_t all) {
      progress(static_cast<double>(done) / static_cast<double>(all));
    };
  }
  return test;
}

std::optional<GroupTestRecord> finished(const fs::path& folder, const std::string& file,
                                        const std::string& key) {
  if (!fs::exists(folder / file)) return std::nullopt;
  try {
    GroupTestRecord record = readGroupRecord(folder / file);
    if (record.key != key) return std::nullopt;
    for (const auto& [name, size] : record.files) {
      std::error_code missing;
      if (fs::file_size(folder / name, missing) != size || missing) return std::nullopt;
    }
    return record;
  } catch (const formats::FileError&) {  // what is no whole record vouches for nothing
    return std::nullopt;
  }
}

class ResultFiles {
 public:
  ResultFiles(fs::path folder, const GroupNames& names, const GroupImages& images, GroupTestRecord& record)
      : folder_(std::move(folder)), names_(names), images_(images), record_(record) {}

  void write(const inference::TestResult& result) {
    writeMap(group_image::kEffect, result.effect);
    writeMap(group_image::kT, result.t);
    writeMap(group_image::kZ, result.z);
    writeMap(group_image::kP, minusLog(result.p));
    writeMap(group_image::kPFwe, result.pFwe);
    writeMap(group_image::kQ, result.qFdr);
    writeMap(group_image::kTfce, result.enhanced);
    writeMap(group_image::kPTfce, result.pEnhanced);
    if (!result.nullMass.sorted.empty()) writeMap(group_image::kPMass, massP(result));
    writeMap(group_image::kCount, {result.rows.begin(), result.rows.end()});
    record_.clusterTable = names_.clusters();
    record_.valueTable = names_.values();
    writeText(record_.clusterTable, groupClusterTable(record_), groupClusterSidecar(record_));
    writeText(record_.valueTable, groupValueTable(record_), groupValueSidecar(record_));
    formats::writeTextFile((folder_ / names_.record()).string(), groupRecordText(record_),
                           formats::Durability::kCached);
  }

 private:
  static std::vector<float> minusLog(std::vector<float> p) {
    for (float& one : p) one = -std::log10(one) + 0.0F;
    return p;
  }
  static std::vector<float> massP(const inference::TestResult& result) {
    std::vector<float> p(result.t.size());
    for (std::size_t i = 0; i < p.size(); ++i) p[i] = std::isnan(result.t[i]) ? kNone : 1.0F;
    for (const inference::Cluster& cluster : result.clusters)
      for (const std::int32_t place : cluster.places)
        p[static_cast<std::size_t>(place)] = static_cast<float>(cluster.pFwe);
    return p;
  }

  void writeMap(const char* what, const std::vector<float>& ofPlaces) {
    if (ofPlaces.empty()) return;
    std::vector<float> grid(images_.header.size.voxels(),
                            std::string_view(what) == group_image::kCount ? 0.0F : kNone);
    for (std::size_t i = 0; i < ofPlaces.size(); ++i) grid[images_.voxels[i]] = ofPlaces[i];
    const std::string name = names_.image(what);
    formats::ImageHeader header = mapHeader(images_.header);
    header.description = fmt::format("{} {}", record_.test, what);
    formats::NiftiWriter writer((folder_ / name).string(), header, formats::Durability::kCached);
    writer.writeValues(grid.data(), grid.size());
    writer.commit();
    record_.images.push_back({what, name});
    note(name);
    writeSidecar(name, groupImageSidecar(record_, what));
  }

  void writeText(const std::string& name, const std::string& text, const nlohmann::ordered_json& sidecar) {
    formats::writeTextFile((folder_ / name).string(), text, formats::Durability::kCached);
    note(name);
    writeSidecar(name, sidecar);
  }

  void writeSidecar(const std::string& of, const nlohmann::ordered_json& json) {
    const std::string name = OutputNames::sidecarOf(of);
    formats::writeTextFile((folder_ / name).string(), json.dump(2) + "\n", formats::Durability::kCached);
    note(name);
  }

  void note(const std::string& name) { record_.files[name] = fs::file_size(folder_ / name); }

  fs::path folder_;
  const GroupNames& names_;
  const GroupImages& images_;
  GroupTestRecord& record_;
};

inference::TestResult tested(const GroupDesign& design, const GroupImages& images,
                             const GroupInference& asked, const inference::TestOptions& options,
                             const std::string& what) {
  const auto size = formats::voxelSize(images.header.affine);
  try {
    return runTest(design.model, images.borrowed(),
                   inference::spaceOfVoxels(images.header.size, images.voxels, asked.connectivity, size),
                   options);
  } catch (const std::invalid_argument& error) {
    throw InputError(fmt::format("{}: {}", what, error.what()));
  }
}

std::vector<std::string> participantsOf(const GroupCell& cell) {
  std::vector<std::string> labels;
  for (const CellRow& row : cell.rows) labels.push_back(row.participant);
  return labels;
}

}  // namespace

GroupTestOutcome runGroupTest(const GroupQuestion& question, const GroupCell& cell,
                              const GroupInference& inference, const Participants& participants,
                              const GroupRunOptions& options) {
  const GroupDesign design = groupDesign(question, participantsOf(cell), participants);
  GroupTestRecord record = plannedRecord(question, cell, inference, design, options.version);
  addRows(cell, design, record);
  record.key = keyOf(record, cell, design);
  const GroupNames names(question.name, cell);
  const fs::path folder = options.outDir / kGroupFolder;
  const std::string file = (fs::path(kGroupFolder) / names.record()).generic_string();
  if (!options.force) {
    if (auto kept = finished(folder, names.record(), record.key)) return {std::move(*kept), file, true};
  }
  const GroupImages images = readGroupImages(options.outDir, cell, design.rows);
  const inference::TestResult result =
      tested(design, images, inference, testOptions(record, design, options),
             fmt::format("test '{}', {}", question.name, groupValueWords(record)));
  const TestedGroup test{cell, design, images, result, inference};
  countFindings(test, record);
  record.peaks = groupPeaks(test, options.outDir);
  record.warnings = groupWarnings(test);
  fs::create_directories(folder);
  std::error_code ignored;
  fs::remove(folder / names.record(), ignored);  // it must not vouch for a mixture of its files and new ones
  ResultFiles(folder, names, images, record).write(result);
  return {std::move(record), file, false};
}

}  // namespace study
