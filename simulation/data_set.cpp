#include "simulation/data_set.h"

#include <fmt/core.h>

#include <filesystem>
#include <vector>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/nifti_writer.h"
#include "formats/vtc_import.h"
#include "simulation/answer_script.h"
#include "simulation/block_design.h"
#include "simulation/scan.h"
#include "simulation/truth.h"

namespace simulation {
namespace {

constexpr std::uint32_t kOnlyParticipant = 0;
constexpr std::uint32_t kHeadStream = 0;  // runs have the streams from 1
constexpr int kMostRuns = 99, kMostVolumes = 30000;

bool within(int value, int smallest, int largest) {
  return value >= smallest && value <= largest;
}

std::string rangeProblem(const char* what, int smallest, int largest) {
  return fmt::format("{} must be from {} to {}", what, smallest, largest);
}

void writeHead(const std::string& folder, const Head& head, const InfluenceModel& model) {
  writeAnatomy(folder + "/anatomy.nii.gz", head);
  writeMask(folder + "/mask.nii.gz", head);
  writeLabels(folder + "/dseg.nii.gz", head);
  formats::writeLabelTable(folder + "/dseg.tsv", labelTableOf(model));
}

void writeBold(const std::string& path, const Head& head, const InfluenceModel& model,
               const DataSetOptions& options, int run) {
  NoiseStream random(options.seed, kOnlyParticipant, static_cast<std::uint32_t>(run));
  const Artefacts none;
  Scan scan(head, model, none, options.volumes, random);
  formats::ImageHeader header = headerOf(head, formats::DataType::kFloat32, "simulated run");
  header.volumes = options.volumes;
  header.series = true;
  header.trMs = options.trMs;
  formats::NiftiWriter writer(path, header);
  for (int volume = 0; volume < options.volumes; ++volume) {
    const std::vector<float>& values = scan.nextVolume();
    writer.writeValues(values.data(), values.size());
  }
  writer.commit();
}

void importBold(const std::string& folder, const std::string& bold, const std::string& vtc) {
  formats::ImportOptions import;
  import.maskPath = folder + "/mask.nii.gz";
  import.durability = formats::Durability::kCached;
  formats::importVtc(fmt::format("{}/{}", folder, bold), fmt::format("{}/{}", folder, vtc), import);
}

SessionRun writeRun(const std::string& folder, const Head& head, const InfluenceModel& model,
                    const DataSetOptions& options, int run) {
  const std::string stem = "run-" + std::to_string(run);
  const SessionRun written{stem + ".vtc", stem + ".prt", options.volumes, blockDesign(run, options.volumes)};
  writeBold(fmt::format("{}/{}_bold.nii.gz", folder, stem), head, model, options, run);
  importBold(folder, stem + "_bold.nii.gz", written.vtc);
  formats::writeProtocol(fmt::format("{}/{}", folder, written.protocol), written.design);
  formats::writeTextFile(fmt::format("{}/{}_events.tsv", folder, stem),
                         eventsTable(written.design, options.trMs));
  return written;
}

}  // namespace

std::string problemWith(const DataSetOptions& options) {
  const formats::GridSize& grid = options.head.grid;
  if (!within(options.runs, 1, kMostRuns)) return rangeProblem("the number of runs", 1, kMostRuns);
  if (!within(options.volumes, kFewestVolumes, kMostVolumes))
    return rangeProblem("the number of volumes", kFewestVolumes, kMostVolumes);
  for (const int extent : {grid.x, grid.y, grid.z})
    if (!within(extent, kSmallestExtent, kLargestExtent))
      return rangeProblem("every extent of the grid", kSmallestExtent, kLargestExtent);
  // Written so that NaN is a problem, too.
  if (!(options.trMs >= 1 && options.trMs <= 60000)) return "the repetition time must be from 1 to 60000 ms";
  if (!(options.strength >= 0 && options.strength <= 1.5)) return "the strength must be from 0 to 1.5";
  if (!(options.head.voxelMm >= 0.1 && options.head.voxelMm <= 100))
    return "a voxel must measure 0.1 to 100 mm";
  return "";
}

void makeFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error)
    throw formats::FileError(folder, "cannot create the folder: " + error.message(),
                             "Give a folder in a place where you may write", formats::Fault::kSystem);
}

void writeDataSet(const std::string& folder, const DataSetOptions& options) {
  const InfluenceModel model = plantedModel(options.strength);
  NoiseStream random(options.seed, kOnlyParticipant, kHeadStream);
  const Head head = makeHead(options.head, model, random);
  makeFolder(folder + "/maps");
  writeHead(folder, head, model);
  std::vector<SessionRun> runs;
  for (int run = 1; run <= options.runs; ++run) runs.push_back(writeRun(folder, head, model, options, run));
  writeTruth(folder + "/truth.json", truthOf(model, head.regionVoxels, options.seed, options.strength));
  formats::writeTextFile(folder + "/answers.txt", wholeRunAnswers(runs, "maps/sim"));
  formats::writeTextFile(folder + "/answers-protocol.txt", protocolAnswers(runs, "faces", "maps/sim-faces"));
}

}  // namespace simulation
