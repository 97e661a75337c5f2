#include "simulation/bids_tree.h"

#include <fmt/core.h>

#include "formats/atomic_file.h"
#include "formats/label_table.h"
#include "formats/nifti_writer.h"
#include "simulation/bids_metadata.h"
#include "simulation/block_design.h"
#include "simulation/confounds.h"
#include "simulation/scan.h"
#include "simulation/truth.h"

namespace simulation {
namespace {

constexpr std::uint32_t kHeadParticipant = 0, kHeadStream = 0;
constexpr std::uint32_t kConfoundStreams = 1000;  // above the streams of all runs
constexpr int kMniSpace = 4;

struct Tree {
  std::string folder;
  const DataSetOptions& options;
  const InfluenceModel& model;
  const Head& head;

  [[nodiscard]] std::string derivatives() const { return folder + "/derivatives/preprocessed"; }
  [[nodiscard]] std::string atlas() const { return folder + "/derivatives/atlas"; }
};

struct SeriesPaths {
  std::string raw, preprocessed;  // paths without .nii.gz
};

std::string subjectName(int participant) {
  return (participant < 10 ? "sub-0" : "sub-") + std::to_string(participant);
}

std::string inSpace(const std::string& stem) {
  return fmt::format("{}_space-{}", stem, kSpace);
}

void writeTop(const Tree& tree, int participants) {
  using formats::writeTextFile;
  makeFolder(tree.derivatives());
  makeFolder(tree.atlas());
  writeTextFile(tree.folder + "/dataset_description.json", rawDescription());
  writeTextFile(tree.folder + "/README", readmeText());
  writeTextFile(tree.folder + "/participants.tsv", participantsTable(participants));
  writeTextFile(tree.folder + "/participants.json", participantsSidecar());
  writeTextFile(fmt::format("{}/task-{}_events.json", tree.folder, kTask), eventsSidecar());
  writeTextFile(tree.derivatives() + "/dataset_description.json",
                derivativeDescription("Simulated scans as if preprocessed"));
  writeTextFile(tree.atlas() + "/dataset_description.json",
                derivativeDescription("Regions of the simulated head"));
}

void writeAtlas(const Tree& tree) {
  const std::string stem = inSpace(tree.atlas() + "/atlas-Simulated") + "_dseg";
  writeLabels(stem + ".nii.gz", tree.head);
  formats::writeLabelTable(stem + ".tsv", labelTableOf(tree.model));
}

void writeAnatomies(const Tree& tree, const std::string& subject) {
  const std::string raw = fmt::format("{}/{}/anat/", tree.folder, subject),
                    derived = fmt::format("{}/{}/anat/", tree.derivatives(), subject);
  makeFolder(raw);
  makeFolder(derived);
  const std::string preprocessed = inSpace(derived + subject);
  writeAnatomy(fmt::format("{}{}_T1w.nii.gz", raw, subject), tree.head);
  formats::writeTextFile(fmt::format("{}{}_T1w.json", raw, subject), anatomySidecar());
  writeAnatomy(preprocessed + "_desc-preproc_T1w.nii.gz", tree.head);
  formats::writeTextFile(preprocessed + "_desc-preproc_T1w.json", anatomySidecar());
}

formats::ImageHeader seriesHeader(const Tree& tree, formats::DataType type) {
  formats::ImageHeader header = headerOf(tree.head, type, "simulated run");
  header.volumes = tree.options.volumes;
  header.series = true;
  header.trMs = tree.options.trMs;
  return header;
}

// The raw series is the other one rounded to whole numbers, as scanners give it.
void writeSeries(const Tree& tree, const SeriesPaths& paths, const Artefacts& artefacts,
                 NoiseStream& random) {
  Scan scan(tree.head, tree.model, artefacts, tree.options.volumes, random);
  formats::NiftiWriter raw(paths.raw + ".nii.gz", seriesHeader(tree, formats::DataType::kInt16));
  formats::NiftiWriter preprocessed(paths.preprocessed + ".nii.gz",
                                    seriesHeader(tree, formats::DataType::kFloat32));
  for (int volume = 0; volume < tree.options.volumes; ++volume) {
    const std::vector<float>& values = scan.nextVolume();
    raw.writeValues(values.data(), values.size());
    preprocessed.writeValues(values.data(), values.size());
  }
  raw.commit();
  preprocessed.commit();
  formats::writeTextFile(paths.raw + ".json", rawBoldSidecar(tree.options.trMs, tree.head.grid.z));
  formats::writeTextFile(paths.preprocessed + ".json", preprocessedBoldSidecar(tree.options.trMs));
}

void writeRunMask(const Tree& tree, const std::string& derived) {
  writeMask(inSpace(derived) + "_desc-brain_mask.nii.gz", tree.head);
  formats::writeTextFile(inSpace(derived) + "_desc-brain_mask.json", maskSidecar());
}

void writeConfounds(const std::string& derived, const std::vector<Confound>& confounds) {
  const std::string stem = derived + "_desc-confounds_timeseries";
  formats::writeTextFile(stem + ".tsv", confoundsTable(confounds));
  formats::writeTextFile(stem + ".json", confoundsSidecar(confounds));
}

void writeRun(const Tree& tree, int participant, int run) {
  const std::string subject = subjectName(participant);
  const std::string name = fmt::format("/{}/func/{}_task-{}_run-{}", subject, subject, kTask, run);
  const std::string raw = tree.folder + name, derived = tree.derivatives() + name;
  const auto person = static_cast<std::uint32_t>(participant), number = static_cast<std::uint32_t>(run);
  NoiseStream nuisance(tree.options.seed, person, kConfoundStreams + number);
  const std::vector<Confound> confounds = drawConfounds(tree.options.volumes, nuisance);
  NoiseStream random(tree.options.seed, person, number);
  writeSeries(tree, {raw + "_bold", inSpace(derived) + "_desc-preproc_bold"}, artefactsOf(confounds), random);
  writeRunMask(tree, derived);
  writeConfounds(derived, confounds);
  formats::writeTextFile(raw + "_events.tsv",
                         eventsTable(blockDesign(run, tree.options.volumes), tree.options.trMs));
}

void writeParticipant(const Tree& tree, int participant) {
  const std::string subject = subjectName(participant);
  writeAnatomies(tree, subject);
  makeFolder(fmt::format("{}/{}/func", tree.folder, subject));
  makeFolder(fmt::format("{}/{}/func", tree.derivatives(), subject));
  for (int run = 1; run <= tree.options.runs; ++run) writeRun(tree, participant, run);
  writeTruth(fmt::format("{}/{}_truth.json", tree.atlas(), subject),
             truthOf(tree.model, tree.head.regionVoxels, tree.options.seed, tree.options.strength));
}

}  // namespace

void writeBidsTree(const std::string& folder, const DataSetOptions& options, int participants) {
  const InfluenceModel model = plantedModel(options.strength);
  HeadOptions headOptions = options.head;
  headOptions.spaceCode = kMniSpace;
  NoiseStream random(options.seed, kHeadParticipant, kHeadStream);
  const Head head = makeHead(headOptions, model, random);
  const Tree tree{folder, options, model, head};
  writeTop(tree, participants);
  writeAtlas(tree);
  for (int participant = 1; participant <= participants; ++participant) writeParticipant(tree, participant);
}

}  // namespace simulation
