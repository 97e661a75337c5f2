// A small data set with fMRIPrep-style derivatives, two runs of one participant and one of another, and
// `tavmap bids` on it.
#ifndef TAVMAP_TESTS_BIDS_BIDS_COMMAND_FIXTURE_H
#define TAVMAP_TESTS_BIDS_BIDS_COMMAND_FIXTURE_H

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

class BidsCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    scratch_.write("raw/dataset_description.json", R"({"Name": "small", "BIDSVersion": "1.8.0"})");
    scratch_.write("raw/task-blocks_events.tsv",
                   "onset\tduration\ttrial_type\n20\t80\tface\n130\t80\thouse\n220\t80\tface\n");
    small_study::writeRegions(folder() / "dseg.nii.gz");
    addRun("01", "1", 11);
    addRun("01", "2", 12);
    addRun("02", "1", 13);
  }
  void addRun(const std::string& sub, const std::string& run, unsigned seed) {
    const std::string begin =
        "raw/derivatives/fmriprep/sub-" + sub + "/func/sub-" + sub + "_task-blocks_run-" + run;
    scratch_.write(begin + "_desc-confounds_timeseries.tsv", confounds(seed));
    scratch_.write(begin + "_space-MNI_desc-preproc_bold.json",
                   R"({"RepetitionTime": 2.0, "TaskName": "blocks"})");
    small_study::writeBold(folder() / (begin + "_space-MNI_desc-preproc_bold.nii.gz"), seed);
    small_study::writeMask(folder() / (begin + "_space-MNI_desc-brain_mask.nii.gz"));
  }
  // Motion with four jumps, tissue signals and one of them again, three volumes before the steady state.
  static std::string confounds(unsigned seed) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal;
    std::string table = "framewise_displacement\ttrans_x\ttrans_y\ttrans_z\tcsf\twhite_matter\tcsf_again";
    for (const char* number : {"00", "01", "02"}) table += "\tnon_steady_state_outlier" + std::string(number);
    table += "\n";
    for (int v = 0; v < small_study::kVolumes; ++v) {
      const bool jump = v == 60 || v == 62 || v == 100 || v == 130;
      std::string csf;
      table += v == 0 ? "n/a" : jump ? "2.5" : "0.1";
      for (int column = 0; column < 5; ++column) {
        const std::string value = "\t" + std::to_string(normal(generator));
        if (column == 3) csf = value;
        table += value;
      }
      table += csf;
      for (int outlier = 0; outlier < 3; ++outlier) table += v == outlier ? "\t1" : "\t0";
      table += "\n";
    }
    return table;
  }
  ProgramResult run(std::vector<std::string> more) {
    std::vector<std::string> words = {"bids",          (folder() / "raw").string(),
                                      out().string(),  "participant",
                                      "--atlas",       (folder() / "dseg.nii.gz").string(),
                                      "--config-file", config().string(),
                                      "--seed",        "4"};
    words.insert(words.end(), more.begin(), more.end());
    return tavmap(words, folder());
  }
  std::filesystem::path config() {
    return scratch_.write("c.toml", "[settings]\nsurrogates = 60\ndiscarded_time_points = 20\n" + extra_);
  }
  std::filesystem::path out() const { return folder() / "out"; }
  const std::filesystem::path& folder() const { return scratch_.folder(); }
  nlohmann::json read(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return nlohmann::json::parse(stream, nullptr, false);
  }
  std::string extra_;
  Scratch scratch_;
};

#endif
