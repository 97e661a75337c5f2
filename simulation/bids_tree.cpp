#include "simulation/bids_tree.h"

#include <fmt/core.h>

#include "formats/atomic_file.h"
#include "formats/label_table.h"
#include "formats/nifti_writer.h"
#include "simulation/bids_metadata.h"
#include "simulation/block_design.h"
#include "simulation/confounds.h"
#include "simulation/group_metadata.h"
#include "simulation/scan.h"
#include "simulation/truth.h"

namespace simulation {
namespace {

constexpr std::uint32_t kHeadParticipant = 0, kSharedHeadStream = 0;
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

// A run of somebody.
struct RunOf {
  const Person& person;
  int number, volumes;
  formats::Protocol design;
};

// The blocks are planned for a whole run, also when it breaks off.
RunOf runOf(const Tree& tree, const Person& person, int number) {
  const bool breaksOff = person.spoilt == Spoilt::kCutShort && number == tree.options.runs;
  const int volumes = breaksOff ? kVolumesOfCutRun : tree.options.volumes;
  return {person, number, volumes, blockDesign(number, tree.options.volumes)};
}

std::string inSpace(const std::string& stem) {
  return fmt::format("{}_space-{}", stem, kSpace);
}

// What the top of the tree says of its participants.
struct TopTexts {
  std::string readme, participants, participantsSidecar;
};

void writeTop(const Tree& tree, const TopTexts& texts) {
  using formats::writeTextFile;
  makeFolder(tree.derivatives());
  makeFolder(tree.atlas());
  writeTextFile(tree.folder + "/dataset_description.json", rawDescription());
  writeTextFile(tree.folder + "/README", texts.readme);
  writeTextFile(tree.folder + "/participants.tsv", texts.participants);
  writeTextFile(tree.folder + "/participants.json", texts.participantsSidecar);
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

formats::ImageHeader seriesHeader(const Tree& tree, const RunOf& run, formats::DataType type) {
  formats::ImageHeader header = headerOf(tree.head, type, "simulated run");
  header.volumes = run.volumes;
  header.series = true;
  header.trMs = tree.options.trMs;
  return header;
}

// The raw series is the other one rounded to whole numbers, as scanners give it.
void writeSeries(const Tree& tree, const RunOf& run, const SeriesPaths& paths, const Artefacts& artefacts) {
  NoiseStream random(tree.options.seed, static_cast<std::uint32_t>(run.person.number),
                     static_cast<std::uint32_t>(run.number));
  Scan scan(tree.head, run.person.model, artefacts, run.volumes, random);
  formats::NiftiWriter raw(paths.raw + ".nii.gz", seriesHeader(tree, run, formats::DataType::kInt16));
  formats::NiftiWriter preprocessed(paths.preprocessed + ".nii.gz",
                                    seriesHeader(tree, run, formats::DataType::kFloat32));
  for (int volume = 1; volume <= run.volumes; ++volume) {
    scan.use(modelAt(run.person, run.design, volume));
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

void writeRun(const Tree& tree, const RunOf& run) {
  const std::string subject = subjectName(run.person.number);
  const std::string name = fmt::format("/{}/func/{}_task-{}_run-{}", subject, subject, kTask, run.number);
  const std::string raw = tree.folder + name, derived = tree.derivatives() + name;
  NoiseStream nuisance(tree.options.seed, static_cast<std::uint32_t>(run.person.number),
                       kConfoundStreams + static_cast<std::uint32_t>(run.number));
  const std::vector<Confound> confounds = drawConfounds(run.volumes, nuisance, run.person.motion);
  writeSeries(tree, run, {raw + "_bold", inSpace(derived) + "_desc-preproc_bold"}, artefactsOf(confounds));
  writeRunMask(tree, derived);
  writeConfounds(derived, confounds);
  formats::writeTextFile(raw + "_events.tsv", eventsTable(run.design, tree.options.trMs));
}

void writePerson(const Tree& tree, const Person& person) {
  const std::string subject = subjectName(person.number);
  writeAnatomies(tree, subject);
  makeFolder(fmt::format("{}/{}/func", tree.folder, subject));
  makeFolder(fmt::format("{}/{}/func", tree.derivatives(), subject));
  for (int run = 1; run <= tree.options.runs; ++run) writeRun(tree, runOf(tree, person, run));
  writeTruth(fmt::format("{}/{}_truth.json", tree.atlas(), subject),
             truthOf(person.model, tree.head.regionVoxels, tree.options.seed, person.strength));
}

Head headOf(const DataSetOptions& options, const InfluenceModel& model) {
  HeadOptions head = options.head;
  head.spaceCode = kMniSpace;
  NoiseStream random(options.seed, kHeadParticipant, kSharedHeadStream);
  return makeHead(head, model, random);
}

void writeTree(const Tree& tree, const TopTexts& texts, const std::vector<Person>& people) {
  writeTop(tree, texts);
  writeAtlas(tree);
  for (const Person& person : people) writePerson(tree, person);
}

}  // namespace

void writeBidsTree(const std::string& folder, const DataSetOptions& options, int participants) {
  const InfluenceModel model = plantedModel(options.strength);
  const Head head = headOf(options, model);
  std::vector<Person> people;
  for (int number = 1; number <= participants; ++number)
    people.push_back({.number = number, .strength = options.strength, .model = model});
  writeTree({folder, options, model, head},
            {readmeText(), participantsTable(participants), participantsSidecar()}, people);
}

void writeGroupStudy(const std::string& folder, const DataSetOptions& options, const GroupDesign& design) {
  const InfluenceModel model = plantedModel(options.strength);
  const Head head = headOf(options, model);
  const std::vector<Person> people = peopleOf(design, options.seed, options.strength);
  const Tree tree{folder, options, model, head};
  writeTree(tree, {groupReadme(design), groupParticipantsTable(people), groupParticipantsSidecar()}, people);
  formats::writeTextFile(tree.atlas() + "/study_truth.json",
                         studyTruth(design, options, head.regionVoxels, people));
}

}  // namespace simulation
