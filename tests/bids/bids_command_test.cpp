// `tavmap bids` on a small data set with fMRIPrep-style derivatives.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "formats/nifti.h"
#include "tests/bids/bids_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const std::string kFirst = "sub-01_task-blocks_space-MNI_seed-A_contrast-wholeRef2Vox_stat-effect_statmap";

TEST_F(BidsCommand, PoolsTheRunsOfEveryParticipant) {
  const ProgramResult result = run({"--labels", "A", "--jobs", "2"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json sidecar = read(out() / "sub-01/func" / (kFirst + ".json"));
  EXPECT_EQ(sidecar["VolumesUsed"], 2 * small_study::kVolumes);
  ASSERT_EQ(sidecar["Runs"].size(), 2U);  // intervals of one model, not one long run
  EXPECT_EQ(sidecar["Runs"][0]["Run"], "run-1");
  EXPECT_EQ(sidecar["Sources"][0],
            "bids:raw:derivatives/fmriprep/sub-01/func/"
            "sub-01_task-blocks_run-1_space-MNI_desc-preproc_bold.nii.gz");
  EXPECT_TRUE(fs::exists(out() / "sub-01/func" / (kFirst + ".nii.gz")));
  EXPECT_TRUE(fs::exists(
      out() /
      "sub-02/func/sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-wholedTAV_stat-effect_statmap.nii.gz"));
}

TEST_F(BidsCommand, DescribesTheDataSet) {
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "02"}).exitCode, 0);
  const json description = read(out() / "dataset_description.json");
  EXPECT_EQ(description["DatasetType"], "derivative");
  EXPECT_EQ(description["GeneratedBy"][0]["Name"], "Tavmap");
  EXPECT_EQ(description["DatasetLinks"]["raw"], "file://" + (folder() / "raw").string());
  EXPECT_TRUE(description.contains("BIDSVersion"));
}

TEST_F(BidsCommand, NamesTheAuthorsOfTheInputAndInventsNoLicense) {
  scratch_.write(
      "raw/dataset_description.json",
      R"({"Name": "small", "BIDSVersion": "1.8.0", "Authors": ["A. B.", "C. D."], "License": "CC0"})");
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "02"}).exitCode, 0);
  const json description = read(out() / "dataset_description.json");
  EXPECT_EQ(description["Authors"], json({"A. B.", "C. D."}));
  EXPECT_FALSE(description.contains("License"));
}

TEST_F(BidsCommand, KeepsTheResolutionOfItsInput) {
  scratch_.write(
      "raw/derivatives/fmriprep/sub-02/func/sub-02_task-blocks_run-1_space-MNI_desc-preproc_bold.json",
      R"({"RepetitionTime": 2.0, "Resolution": "as scanned"})");
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "02"}).exitCode, 0);
  const std::string begin = "sub-02_task-blocks_run-1_space-MNI_seed-A_";
  for (const char* end : {"contrast-wholedTAV_stat-effect_statmap.json", "desc-wholeStatus_dseg.json",
                          "desc-wholeDirection_dseg.json"})
    EXPECT_EQ(read(out() / "sub-02/func" / (begin + end))["Resolution"], "as scanned") << end;
}

TEST_F(BidsCommand, TakesARepetitionTimeThatNoSidecarGives) {
  const std::string sidecar =
      "raw/derivatives/fmriprep/sub-02/func/sub-02_task-blocks_run-1_space-MNI_desc-preproc_bold.json";
  const ProgramResult other = run({"--labels", "A", "--participant-label", "02", "--tr", "2.5"});
  EXPECT_EQ(other.exitCode, 2);
  EXPECT_NE(other.err.find("--tr says TR = 2.5 s, but " + (folder() / sidecar).string() +
                           " says TR = 2 s; leave --tr out, or correct the file"),
            std::string::npos)
      << other.err;
  scratch_.write(sidecar, "{}");
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "02", "--tr", "2.5"}).exitCode, 0);
  EXPECT_EQ(read(out() / "sub-02/func" /
                 "sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-wholedTAV_stat-effect_statmap.json")
                ["RepetitionTime"],
            2.5);
}

TEST_F(BidsCommand, HoldsItsWorkersToTheMemory) {
  const ProgramResult held = run({"--labels", "A", "--participant-label", "02", "--mem", "0.7G", "--nthreads",
                                  "4", "--omp-nthreads", "8"});
  EXPECT_EQ(held.exitCode, 0);
  EXPECT_NE(held.err.find("tavmap: --mem-mb 0.7G holds 2 of 4 workers, each of which may take 300 MB"),
            std::string::npos)
      << held.err;
  const ProgramResult little = run({"--labels", "A", "--mem-mb", "200"});
  EXPECT_EQ(little.exitCode, 2);
  EXPECT_NE(little.err.find("--mem-mb: 200 MB are not enough for one worker, which may take 300 MB"),
            std::string::npos);
  EXPECT_NE(run({"--labels", "A", "--mem-mb", "much"}).err.find("must be megabytes, such as 8000, or 8G"),
            std::string::npos);
}

TEST_F(BidsCommand, TakesParticipantsInEitherSpelling) {
  for (const char* flag : {"--participant-label", "--participant_label"}) {
    fs::remove_all(out());
    const ProgramResult result =
        run({flag, "sub-02", "--labels", "A", "--notrack", "--mem-mb", "4000", "--nthreads", "2"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(fs::exists(out() / "sub-02"));
    EXPECT_FALSE(fs::exists(out() / "sub-01"));
  }
}

TEST_F(BidsCommand, AWrongLabelNeverEndsWithZero) {
  const ProgramResult participant = run({"--participant-label", "03"});
  EXPECT_EQ(participant.exitCode, 2);
  EXPECT_NE(participant.err.find("no preprocessed run of participant '03'; did you mean '01'?"),
            std::string::npos);
  EXPECT_EQ(run({"--task-id", "block"}).exitCode, 2);
  EXPECT_EQ(run({"--run-id", "7"}).exitCode, 2);
  EXPECT_NE(run({"--labels", "Z9"}).exitCode, 0);
  EXPECT_EQ(run({"--space", "T1w"}).exitCode, 2);
  EXPECT_FALSE(fs::exists(out() / "sub-01/func" / (kFirst + ".nii.gz")));
}

TEST_F(BidsCommand, RunNumbersIgnoreLeadingZeros) {
  ASSERT_EQ(run({"--run-id", "02", "--labels", "A"}).exitCode, 0);
  EXPECT_TRUE(fs::exists(out() / "sub-01"));
  EXPECT_FALSE(fs::exists(out() / "sub-02"));
}

// 3 volumes dropped, 4 censored and one too short to stay, 6 columns of rank 5: no count is another's.
TEST_F(BidsCommand, DropsRegressesAndCensorsAndSaysSo) {
  extra_ =
      "[preparation]\nregress = ['trans_*', 'csf', 'white_matter', 'csf_again']\ndrop_volumes = "
      "'auto'\nfd_threshold = "
      "0.5\nmin_segment = 5\n";
  const ProgramResult result = run({"--labels", "A", "--participant-label", "01"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json run1 = read(out() / "sub-01/func" / (kFirst + ".json"))["Runs"][0];
  EXPECT_NE(result.out.find(
                "WARNING: sub-01_task-blocks_space-MNI: condition 'whole': run 'run-1': 8 of 160 volumes "
                "dropped or censored"),
            std::string::npos)
      << result.out;
  EXPECT_EQ(run1["VolumesDropped"], 3);
  EXPECT_EQ(run1["VolumesCensored"], 4);
  // Volume 62 alone is too short.
  EXPECT_EQ(run1["Intervals"], json::parse("[[4, 60], [64, 100], [102, 130], [132, 160]]"));
  EXPECT_EQ(run1["VolumesUsed"], 152);
  EXPECT_EQ(run1["EffectiveVolumes"], 143);        // less 4 for the order and 5 for what was regressed
  EXPECT_EQ(run1["ConfoundDegreesOfFreedom"], 5);  // of six columns, one of which stands there twice
  EXPECT_EQ(run1["ConfoundsRegressed"],
            json::parse(R"(["trans_x", "trans_y", "trans_z", "csf", "white_matter", "csf_again"])"));
}

TEST_F(BidsCommand, TheCommandLineDropsCensorsAndRegressesToo) {
  const ProgramResult result = run({"--labels", "A", "--participant-label", "01", "--fd-threshold", "0.5",
                                    "--drop-volumes", "auto", "--confounds", "csf"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json run1 = read(out() / "sub-01/func" / (kFirst + ".json"))["Runs"][0];
  EXPECT_EQ(run1["VolumesDropped"], 3);
  EXPECT_EQ(run1["VolumesCensored"], 4);
  EXPECT_EQ(run1["ConfoundsRegressed"], json::parse(R"(["csf"])"));
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "01", "--drop-volumes", "7", "--force"}).exitCode,
            0);
  const json dropped = read(out() / "sub-01/func" / (kFirst + ".json"))["Runs"][0];
  EXPECT_EQ(dropped["VolumesDropped"], 7);
  EXPECT_EQ(dropped["VolumesCensored"], 0);
}

// The command line goes before the file, with 0 as well.
TEST_F(BidsCommand, TheCommandLineGoesBeforeTheFile) {
  extra_ = "[preparation]\ndrop_volumes = 9\nfd_threshold = 0.5\nregress = ['csf']\n";
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "02", "--fd-threshold", "0", "--drop-volumes", "0",
                 "--confounds", "white_matter"})
                .exitCode,
            0);
  const json run1 = read(
      out() /
      "sub-02/func/"
      "sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-wholeRef2Vox_stat-effect_statmap.json")["Runs"][0];
  EXPECT_EQ(run1["VolumesDropped"], 0);
  EXPECT_EQ(run1["VolumesCensored"], 0);
  EXPECT_EQ(run1["ConfoundsRegressed"], json::parse(R"(["white_matter"])"));
}

TEST_F(BidsCommand, TheSeedMayStandInTheFile) {
  const fs::path file = scratch_.write("s.toml", "seed = 77\n[settings]\nsurrogates = 60\n");
  ASSERT_EQ(tavmap({"bids", (folder() / "raw").string(), out().string(), "participant", "--atlas",
                    (folder() / "dseg.nii.gz").string(), "--labels", "A", "--participant-label", "01",
                    "--config-file", file.string()},
                   folder())
                .exitCode,
            0);
  EXPECT_EQ(read(out() / "sub-01/func" / (kFirst + ".json"))["Seed"], 77);
}

TEST_F(BidsCommand, TrialTypesBecomeConditions) {
  ASSERT_EQ(
      run({"--labels", "A", "--participant-label", "02", "--trial-types", "face", "house", "--delay", "4"})
          .exitCode,
      0);
  const fs::path func = out() / "sub-02/func";
  const json face =
      read(func / "sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-faceRef2Vox_stat-effect_statmap.json");
  EXPECT_EQ(face["Runs"][0]["Intervals"], json::parse("[[13, 52], [113, 152]]"));
  EXPECT_TRUE(fs::exists(
      func / "sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-houseInst_stat-effect_statmap.nii.gz"));
  const ProgramResult wrong = run({"--labels", "A", "--trial-types", "hause"});
  EXPECT_NE(wrong.exitCode, 0);
  EXPECT_NE(wrong.err.find("no event of trial_type 'hause'; did you mean 'house'?") != std::string::npos ||
                wrong.out.find("no event of trial_type 'hause'; did you mean 'house'?") != std::string::npos,
            false);
}

TEST_F(BidsCommand, OneBadParticipantFailsAloneAndTheExitCodeIsOne) {
  const fs::path bad =
      folder() /
      "raw/derivatives/fmriprep/sub-01/func/sub-01_task-blocks_run-2_space-MNI_desc-preproc_bold.nii.gz";
  fs::resize_file(bad, fs::file_size(bad) / 2);
  const ProgramResult result = run({"--labels", "A"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE((result.err + result.out).find("sub-01_task-blocks_space-MNI: import of run-2"),
            std::string::npos)
      << result.err;
  EXPECT_FALSE(fs::exists(out() / "sub-01/func" / (kFirst + ".json")));
  EXPECT_TRUE(fs::exists(
      out() /
      "sub-02/func/sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-wholeInst_stat-effect_statmap.nii.gz"));
}

// The first participant's run cannot be read; one worker takes one piece of work after the other.
TEST_F(BidsCommand, AfterAFailureNothingNewIsStartedWhenAskedForThat) {
  const fs::path bad =
      folder() /
      "raw/derivatives/fmriprep/sub-01/func/sub-01_task-blocks_run-1_space-MNI_desc-preproc_bold.nii.gz";
  fs::resize_file(bad, fs::file_size(bad) / 2);
  const fs::path second =
      out() /
      "sub-02/func/sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-wholeInst_stat-effect_statmap.nii.gz";
  EXPECT_EQ(run({"--labels", "A", "--jobs", "1", "--stop-on-first-crash"}).exitCode, 1);
  EXPECT_FALSE(fs::exists(second));
  EXPECT_EQ(run({"--labels", "A", "--jobs", "1"}).exitCode, 1);
  EXPECT_TRUE(fs::exists(second));
}

TEST_F(BidsCommand, AParticipantWithoutATableFailsAloneAndIsNamed) {
  fs::remove(folder() /
             "raw/derivatives/fmriprep/sub-01/func/sub-01_task-blocks_run-2_desc-confounds_timeseries.tsv");
  const fs::path second =
      out() /
      "sub-02/func/sub-02_task-blocks_run-1_space-MNI_seed-A_contrast-wholeInst_stat-effect_statmap.nii.gz";
  const std::string failure = "FAILED: sub-01_task-blocks_space-MNI: ";
  ProgramResult result = run({"--labels", "A", "--confounds", "csf", "--stop-on-first-crash"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find(failure), std::string::npos) << result.err;
  EXPECT_FALSE(fs::exists(second));
  result = run({"--labels", "A", "--confounds", "csf"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find(failure), std::string::npos) << result.err;
  EXPECT_NE(result.out.find(
                "_run-2_space-MNI_desc-preproc_bold.nii.gz: no *_desc-confounds_timeseries.tsv beside it"),
            std::string::npos)
      << result.out;
  EXPECT_TRUE(fs::exists(second));
  EXPECT_FALSE(fs::exists(out() / "sub-01"));
  EXPECT_NE(run({"--labels", "A", "--confounds", "csf", "--quiet"}).err.find(failure), std::string::npos);
}

TEST_F(BidsCommand, ParticipantsWithoutEventsAreAllNamed) {
  fs::rename(folder() / "raw/task-blocks_events.tsv", folder() / "raw/task-other_events.tsv");
  const ProgramResult result = run({"--labels", "A", "--trial-types", "face"});
  EXPECT_EQ(result.exitCode, 1);
  for (const char* begin : {"FAILED: sub-01_task-blocks", "FAILED: sub-02_task-blocks"})
    EXPECT_NE(result.err.find(begin), std::string::npos) << result.err;
  EXPECT_NE(result.out.find("no events file in the data set, which condition 'face' needs"),
            std::string::npos);
}

TEST_F(BidsCommand, InputIsOnlyRead) {
  const auto before = filesBelow(folder() / "raw");
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "02"}).exitCode, 0);
  EXPECT_EQ(filesBelow(folder() / "raw"), before);
}

TEST_F(BidsCommand, TheDataSetItselfIsNoOutputFolder) {
  const std::string raw = (folder() / "raw").string();
  const ProgramResult result = tavmap({"bids", raw, raw, "participant"}, folder());
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("the output folder is the data set itself, which is only read"),
            std::string::npos);
}

TEST_F(BidsCommand, FilesOfOthersInTheOutputFolderStay) {
  scratch_.write("out/README", "my notes\n");
  ASSERT_EQ(run({"--labels", "A", "--participant-label", "02"}).exitCode, 0);
  EXPECT_EQ(filesBelow(out()).at("README"), "my notes\n");
}

TEST_F(BidsCommand, MissingConfoundsAndReferencesAreNamed) {
  fs::remove(folder() /
             "raw/derivatives/fmriprep/sub-02/func/sub-02_task-blocks_run-1_desc-confounds_timeseries.tsv");
  const ProgramResult result = run({"--confounds", "6motion", "--participant-label", "02"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(
      result.err.find("no *_desc-confounds_timeseries.tsv beside it, which regression and censoring need"),
      std::string::npos);
  const ProgramResult none =
      tavmap({"bids", (folder() / "raw").string(), out().string(), "participant"}, folder());
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_NE(none.err.find(
                "no reference region: name a label image with --atlas, or [[reference]] in --config-file"),
            std::string::npos);
}

}  // namespace
