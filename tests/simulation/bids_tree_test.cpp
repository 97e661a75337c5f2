#include "simulation/bids_tree.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "formats/label_table.h"
#include "formats/nifti.h"
#include "simulation/block_design.h"
#include "simulation/truth.h"
#include "tests/support/scratch.h"

namespace {

using nlohmann::json;

constexpr const char* kSpaceEntity = "_space-MNI152NLin2009cAsym";

simulation::DataSetOptions smallOptions() {
  simulation::DataSetOptions options;
  options.head.grid = {13, 14, 12};
  options.volumes = 80;
  options.trMs = 1500;
  return options;
}

const Scratch& tree() {
  static const Scratch folder;
  static const bool written = (simulation::writeBidsTree(folder.path(), smallOptions(), 2), true);
  EXPECT_TRUE(written);
  return folder;
}

json jsonOf(const std::string& name) {
  return json::parse(contentOf(tree().file(name)));
}

void addRunFiles(std::set<std::string>& names, const std::string& subject, const std::string& run) {
  const std::string raw = subject + "/func/" + subject + "_task-blocks_run-" + run;
  const std::string derived = "derivatives/preprocessed/" + raw;
  for (const char* ending : {"_bold.nii.gz", "_bold.json", "_events.tsv"}) names.insert(raw + ending);
  for (const char* ending : {"_desc-preproc_bold.nii.gz", "_desc-preproc_bold.json",
                             "_desc-brain_mask.nii.gz", "_desc-brain_mask.json"})
    names.insert(derived + kSpaceEntity + ending);
  for (const char* ending : {"_desc-confounds_timeseries.tsv", "_desc-confounds_timeseries.json"})
    names.insert(derived + ending);
}

void addSubjectFiles(std::set<std::string>& names, const std::string& subject) {
  for (const char* ending : {".nii.gz", ".json"}) {
    names.insert(subject + "/anat/" + subject + "_T1w" + ending);
    names.insert("derivatives/preprocessed/" + subject + "/anat/" + subject + kSpaceEntity +
                 "_desc-preproc_T1w" + ending);
  }
  names.insert("derivatives/atlas/" + subject + "_truth.json");
  for (const char* run : {"1", "2"}) addRunFiles(names, subject, run);
}

TEST(BidsTree, HasRawDataDerivativesAtlasAndTruth) {
  std::set<std::string> expected = {
      "dataset_description.json",
      "README",
      "participants.tsv",
      "participants.json",
      "task-blocks_events.json",
      "derivatives/preprocessed/dataset_description.json",
      "derivatives/atlas/dataset_description.json",
      std::string("derivatives/atlas/atlas-Simulated") + kSpaceEntity + "_dseg.nii.gz",
      std::string("derivatives/atlas/atlas-Simulated") + kSpaceEntity + "_dseg.tsv"};
  for (const char* subject : {"sub-01", "sub-02"}) addSubjectFiles(expected, subject);
  std::set<std::string> found;
  for (const auto& [name, text] : filesBelow(tree().folder())) found.insert(name);
  EXPECT_EQ(found, expected);
}

TEST(BidsTree, DescriptionsSayRawAndDerivative) {
  EXPECT_EQ(jsonOf("dataset_description.json")["DatasetType"], "raw");
  const json derived = jsonOf("derivatives/preprocessed/dataset_description.json");
  EXPECT_EQ(derived["DatasetType"], "derivative");
  EXPECT_EQ(derived["GeneratedBy"][0]["Name"], "tavmap simulate");
  EXPECT_TRUE(derived.contains("BIDSVersion"));
}

TEST(BidsTree, SidecarAndHeaderAgreeOnTheRepetitionTimeInSeconds) {
  const std::string name =
      "derivatives/preprocessed/sub-02/func/"
      "sub-02_task-blocks_run-2_space-MNI152NLin2009cAsym_desc-preproc_bold";
  EXPECT_EQ(jsonOf(name + ".json")["RepetitionTime"], 1.5);
  EXPECT_EQ(formats::readImageHeader(tree().file(name + ".nii.gz")).trMs, 1500);
  EXPECT_EQ(jsonOf("sub-02/func/sub-02_task-blocks_run-2_bold.json")["RepetitionTime"], 1.5);
}

TEST(BidsTree, AtlasMaskAndSeriesShareAGrid) {
  const auto header = [](const std::string& name) { return formats::readImageHeader(tree().file(name)); };
  const std::string run =
      "derivatives/preprocessed/sub-01/func/sub-01_task-blocks_run-1_space-MNI152NLin2009cAsym_desc-";
  const auto series = header(run + "preproc_bold.nii.gz");
  for (const std::string& other :
       {run + "brain_mask.nii.gz",
        std::string("derivatives/atlas/atlas-Simulated_space-MNI152NLin2009cAsym_dseg.nii.gz")}) {
    EXPECT_NO_THROW(requireSameGrid(series, run, header(other), other));
    EXPECT_EQ(header(other).sformCode, 4);
  }
}

TEST(BidsTree, RawSeriesIsThePreprocessedOneInWholeNumbers) {
  const auto raw = formats::readVolume(tree().file("sub-01/func/sub-01_task-blocks_run-1_bold.nii.gz"), 5);
  const auto derived = formats::readVolume(
      tree().file("derivatives/preprocessed/sub-01/func/"
                  "sub-01_task-blocks_run-1_space-MNI152NLin2009cAsym_desc-preproc_bold.nii.gz"),
      5);
  EXPECT_EQ(raw.header.dataType, formats::DataType::kInt16);
  ASSERT_EQ(raw.values.size(), derived.values.size());
  for (std::size_t i = 0; i < raw.values.size(); ++i)
    ASSERT_NEAR(raw.values[i], derived.values[i], 0.5F + 1e-3F);
}

// Air holds nothing but noise; the confounds are drawn from a stream of their own.
TEST(BidsTree, ParticipantsAndRunsHaveNoiseAndConfoundsOfTheirOwn) {
  std::set<std::vector<float>> air;
  std::set<std::string> confounds;
  for (const char* subject : {"sub-01", "sub-02"}) {
    for (const char* run : {"1", "2"}) {
      const std::string stem =
          std::string("derivatives/preprocessed/") + subject + "/func/" + subject + "_task-blocks_run-" + run;
      const std::vector<float> values =
          formats::readVolume(tree().file(stem + kSpaceEntity + "_desc-preproc_bold.nii.gz"), 0).values;
      air.insert({values.begin(), values.begin() + 20});
      confounds.insert(contentOf(tree().file(stem + "_desc-confounds_timeseries.tsv")));
    }
  }
  EXPECT_EQ(air.size(), 4U);
  EXPECT_EQ(confounds.size(), 4U);
}

TEST(BidsTree, EveryRunHasItsOwnDesign) {
  std::set<std::string> tables;
  for (const int run : {1, 2}) {
    const std::string table =
        contentOf(tree().file("sub-01/func/sub-01_task-blocks_run-" + std::to_string(run) + "_events.tsv"));
    EXPECT_EQ(table, simulation::eventsTable(simulation::blockDesign(run, 80), 1500));
    tables.insert(table);
  }
  EXPECT_EQ(tables.size(), 2U);
}

TEST(BidsTree, ParticipantsAndRunsDiffer) {
  std::set<std::string> series;
  for (const char* name : {"sub-01/func/sub-01_task-blocks_run-1", "sub-01/func/sub-01_task-blocks_run-2",
                           "sub-02/func/sub-02_task-blocks_run-1", "sub-02/func/sub-02_task-blocks_run-2"})
    series.insert(contentOf(tree().file(std::string(name) + "_bold.nii.gz")));
  EXPECT_EQ(series.size(), 4U);
}

TEST(BidsTree, IsTheSameForTheSameSeed) {
  const Scratch again;
  simulation::writeBidsTree(again.path(), smallOptions(), 2);
  EXPECT_TRUE(filesBelow(again.folder()) == filesBelow(tree().folder()));
}

TEST(BidsTree, TruthNamesTheRegionsOfTheAtlas) {
  const auto table = formats::readLabelTable(
      tree().file("derivatives/atlas/atlas-Simulated_space-MNI152NLin2009cAsym_dseg.tsv"));
  const auto truth = simulation::readTruth(tree().file("derivatives/atlas/sub-02_truth.json"));
  for (const auto& region : truth.regions) EXPECT_EQ(table.nameOf(region.label), region.model.name);
}

TEST(BidsTree, ParticipantsTableListsEveryone) {
  EXPECT_EQ(contentOf(tree().file("participants.tsv")), "participant_id\tage\nsub-01\tn/a\nsub-02\tn/a\n");
}

}  // namespace
