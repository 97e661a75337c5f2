// `tavmap run` as a user meets it: whole runs of the built program.
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "formats/checksum.h"
#include "formats/map_set.h"
#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class RunCommand : public SmallStudyRun {};

TEST_F(RunCommand, WritesMapsThatKeepTheGridOfTheRun) {
  const ProgramResult result = run(write());
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const formats::Image3D map = formats::readImage((results() / (kMap + ".nii.gz")).string());
  const formats::ImageHeader bold = formats::readImageHeader((folder() / "bold1.nii.gz").string());
  EXPECT_EQ(map.header.size, bold.size);
  for (unsigned i = 0; i < 16; ++i) EXPECT_NEAR(map.header.affine.m[i], bold.affine.m[i], 1e-6);
  EXPECT_EQ(map.header.dataType, formats::DataType::kFloat32);
}

TEST_F(RunCommand, FindsThePlantedInfluenceAndItsDirection) {
  ASSERT_EQ(run(write()).exitCode, 0);
  const formats::Image3D forth = formats::readImage((results() / (kMap + ".nii.gz")).string());
  const formats::Image3D back = formats::readImage(
      (results() / "small_seed-A_contrast-wholeVox2Ref_stat-effect_statmap.nii.gz").string());
  const float threshold = read(kMap + ".json")["Thresholds"][1]["Threshold"];
  EXPECT_GT(forth.at(8, 5, 4), threshold);  // B follows A
  EXPECT_LT(back.at(8, 5, 4), forth.at(8, 5, 4) / 5);
  const json reverse = read("small_seed-B_contrast-wholeVox2Ref_stat-effect_statmap.json");
  EXPECT_TRUE(reverse["Thresholds"][1]["AnyVoxelPasses"]);
}

TEST_F(RunCommand, SidecarsSayWhatAReaderNeeds) {
  ASSERT_EQ(run(write("q = [0.1, 0.01]")).exitCode, 0);
  const json sidecar = read(kMap + ".json");
  EXPECT_EQ(sidecar["Description"], "influence of A on each voxel; condition 'whole'");
  EXPECT_EQ(sidecar["Sources"][0], "bids:input:bold1.nii.gz");
  EXPECT_EQ(sidecar["RepetitionTime"], 2.0);
  EXPECT_EQ(sidecar["Method"], "calibrated");
  EXPECT_EQ(sidecar["ModelOrder"], 1);
  EXPECT_EQ(sidecar["ModelOrderChosenBy"], "fixed");
  EXPECT_EQ(sidecar["VolumesUsed"], 2 * small_study::kVolumes);
  EXPECT_EQ(sidecar["EffectiveVolumes"], 2 * small_study::kVolumes - 2);
  EXPECT_EQ(sidecar["NumberOfSurrogates"], 60);
  EXPECT_EQ(sidecar["NullDrawsPerVoxel"], 20);
  EXPECT_EQ(sidecar["Seed"], 5);
  EXPECT_EQ(sidecar["ReferenceVoxels"], small_study::regionVoxels());
  ASSERT_EQ(sidecar["Thresholds"].size(), 2U);
  EXPECT_EQ(sidecar["Thresholds"][0]["Q"], 0.01);  // sorted before the engine sees them
  EXPECT_EQ(sidecar["Thresholds"][1]["Q"], 0.1);
  EXPECT_EQ(sidecar["Units"], "natural logarithm of a ratio of error variances, times 100.0");
  const std::string version = sidecar["SoftwareVersion"];
  EXPECT_EQ(tavmap({"--version"}, folder()).out.rfind("tavmap " + version, 0), 0U) << version;
  const json difference = read("small_seed-A_contrast-wholedTAV_stat-effect_statmap.json");
  EXPECT_EQ(difference["Description"],
            "difference of the directed influences, A on the voxel minus the voxel on A (positive: A leads; "
            "negative: "
            "the voxel leads; unequal noise can feign both); condition 'whole'");
  EXPECT_FALSE(read("small_seed-A_contrast-wholedTAVRC_stat-effect_statmap.json").contains("Thresholds"));
}

TEST_F(RunCommand, RecordsAndSidecarsSayFromWhichFilesTheyWereMade) {
  ASSERT_EQ(run(write()).exitCode, 0);
  for (const json& said :
       {read("small_seed-B_tavmap.json"), read("small_seed-B_desc-wholeStatus_dseg.json")}) {
    const json source = said["ReferenceSource"];
    EXPECT_EQ(source["Kind"], "labels");
    EXPECT_EQ(source["Image"], "bids:input:dseg.nii.gz");
    EXPECT_EQ(source["Table"], "bids:input:dseg.tsv");
    EXPECT_EQ(source["LabelIndex"], 2);
    EXPECT_EQ(source["LabelName"], "B");
    std::map<std::string, std::string> checksums;
    for (const json& input : said["Inputs"]) checksums[input["File"]] = input["SHA256"];
    EXPECT_EQ(checksums.size(), 6U);
    for (const char* name :
         {"bold1.nii.gz", "bold2.nii.gz", "mask.nii.gz", "events.tsv", "dseg.nii.gz", "dseg.tsv"})
      EXPECT_EQ(checksums[std::string("bids:input:") + name], formats::sha256Of((folder() / name).string()));
  }
}

TEST_F(RunCommand, TheStatusMapSaysWhyOfEveryVoxel) {
  ASSERT_EQ(run(write()).exitCode, 0);
  const formats::LabelImage status =
      formats::readLabelImage((results() / "small_seed-A_desc-wholeStatus_dseg.nii.gz").string());
  int inside = 0;
  for (int z = 0; z < small_study::kDims[2]; ++z) {
    for (int y = 0; y < small_study::kDims[1]; ++y) {
      for (int x = 0; x < small_study::kDims[0]; ++x) {
        const std::int32_t code = status.labels[static_cast<std::size_t>(
            (z * small_study::kDims[1] + y) * small_study::kDims[0] + x)];
        EXPECT_EQ(code == 0, !small_study::inMask(x, y, z)) << x << " " << y << " " << z;
        inside += code == 4 ? 1 : 0;
      }
    }
  }
  EXPECT_EQ(inside, small_study::regionVoxels());
  const json record = read("small_seed-A_tavmap.json");
  const json voxels = record["Conditions"][0]["Voxels"];
  std::size_t all = 0;
  for (const auto& [name, count] : voxels.items()) all += count.get<std::size_t>();
  EXPECT_EQ(all, status.labels.size());
  EXPECT_EQ(voxels["inside the reference"], small_study::regionVoxels());
}

TEST_F(RunCommand, DataBelowTheInclusionThresholdAreStillMappedInsideTheMask) {
  small_study::writeBold(folder() / "bold1.nii.gz", 1, 0);  // as after standardisation
  ASSERT_EQ(run(write()).exitCode, 0);
  const json low = read("small_seed-A_tavmap.json")["Conditions"][0]["Voxels"];
  EXPECT_EQ(low["below the inclusion threshold"], 0);
  EXPECT_GT(low["computed"].get<int>(), 100);
}

TEST_F(RunCommand, ReferenceCoursesComeInTheUnitsOfTheImage) {
  ASSERT_EQ(run(write()).exitCode, 0);
  std::ifstream table(results() / "small_seed-A_desc-reference_timeseries.tsv");
  std::string header, row;
  std::getline(table, header);
  EXPECT_EQ(header, "run1\trun2");
  int rows = 0;
  double first = 0;
  for (; std::getline(table, row); ++rows) {
    if (rows == 0) first = std::stod(row);
  }
  EXPECT_EQ(rows, small_study::kVolumes);
  EXPECT_NEAR(first, 1000, 100);
}

TEST_F(RunCommand, NoVoxelSurvivesIsSaidPlainly) {
  std::string text = small_study::request("q = [0.000001]\nmap_types = ['VOX2REF']");
  text.replace(text.find("'all'"), 5, "'C-left'");
  const ProgramResult result = run(scratch_.write("r.toml", text));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("VOX2REF: no voxel survives at any q"), std::string::npos) << result.out;
  const json sidecar = read("small_seed-Cleft_contrast-wholeVox2Ref_stat-effect_statmap.json");
  EXPECT_TRUE(sidecar["Thresholds"][0]["Threshold"].is_null());
  EXPECT_FALSE(sidecar["Thresholds"][0]["AnyVoxelPasses"]);
  std::ifstream log(results() / "small_C-left.log");
  const std::string content((std::istreambuf_iterator<char>(log)), {});
  EXPECT_NE(content.find("\tVOX2REF, q = 1e-06: no voxel survives\n"), std::string::npos);
}

TEST_F(RunCommand, TheLogSaysWhichMethodRan) {
  ASSERT_EQ(run(write()).exitCode, 0);
  std::ifstream log(results() / "small_A.log");
  const std::string content((std::istreambuf_iterator<char>(log)), {});
  EXPECT_EQ(content.find(folder().string()), std::string::npos);  // no path of this machine
  EXPECT_NE(content.find("\nMethod calibrated: unlike the plug-in, "), std::string::npos);
  EXPECT_NE(content.find("\tTotal nr. time-points: 320"), std::string::npos);
}

TEST_F(RunCommand, WrongInputExitsWithTwoBeforeAnythingIsComputed) {
  const auto expect = [&](const std::string& text, const std::string& message) {
    const ProgramResult result = run(scratch_.write("bad.toml", text));
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_FALSE(fs::exists(results()));
  };
  std::string text = small_study::request();
  text.replace(text.find("'all'"), 5, "'D'");
  expect(text, "bad.toml:17: no label 'D' in " + (folder() / "dseg.nii.gz").string());
  expect(small_study::request("ordre = 1"),
         "bad.toml:6: unknown key 'ordre' in [settings]; did you mean 'order'?");
  text = small_study::request();
  text.replace(text.find("['face']"), 8, "['fase']");
  expect(text, "bad.toml: condition 'face': no event of trial_type 'fase'; did you mean 'face'?");
  EXPECT_EQ(run("nowhere.toml").exitCode, 2);
}

TEST_F(RunCommand, DisputedRepetitionTimesRequireAChoice) {
  scratch_.write("bold1.json", R"({"RepetitionTime": 3.5})");
  const ProgramResult result = run(write());
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find(
                "run 'run1': the image's header says TR = 2 s, bold1.json says TR = 3.5 s; choose one with "
                "'tr' (seconds)"),
            std::string::npos)
      << result.err;
}

TEST_F(RunCommand, WarningsReachTerminalLogAndSidecar) {
  scratch_.write("bold1.json", R"({"RepetitionTime": 2.0, "HighpassFilter": 0.01})");
  const ProgramResult result = run(write());
  ASSERT_EQ(result.exitCode, 0);
  const std::string warning =
      "run 'run1' was filtered in time (HighpassFilter). Filtering changes the lagged structure";
  EXPECT_NE(result.out.find("WARNING: " + warning), std::string::npos);
  EXPECT_EQ(read(kMap + ".json")["Warnings"][0].get<std::string>().rfind(warning, 0), 0U);
  EXPECT_EQ(read(kMap + ".json")["SoftwareFilters"][0], "HighpassFilter");
  std::ifstream log(results() / "small_A.log");
  const std::string content((std::istreambuf_iterator<char>(log)), {});
  EXPECT_NE(content.find("WARNING: " + warning), std::string::npos);
}

// The second run lies 2 mm beside the first.
TEST_F(RunCommand, RunsOfDifferentGridsAreRefused) {
  const std::string second = (folder() / "bold2.nii.gz").string();
  formats::ImageHeader header = formats::readImageHeader(second);
  header.affine.at(0, 3) += 2;
  header.qformCode = 0;
  const std::vector<float> values(header.size.voxels() * static_cast<std::size_t>(header.volumes), 500.0F);
  formats::NiftiWriter writer(second, header);
  writer.writeValues(values.data(), values.size());
  writer.commit();
  std::string text = small_study::request();
  const std::string mask = "mask = 'mask.nii.gz'\n";  // of the first run's grid
  text.erase(text.rfind(mask), mask.size());
  const ProgramResult result = run(scratch_.write("r.toml", text));
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("runs 'run1' and 'run2' lie on different grids (" +
                            (folder() / "bold1.nii.gz").string() + ", " + second + ")"),
            std::string::npos)
      << result.err;
}

TEST_F(RunCommand, AFileThatIsNoImageIsNamed) {
  scratch_.write("bold2.nii.gz", "not an image");
  const ProgramResult result = run(write());
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("bold2.nii.gz"), std::string::npos);
}

TEST_F(RunCommand, ThePlainCaseNeedsImageMaskAndSeedOnly) {
  const fs::path request = scratch_.write("r.toml",
                                          "[[run]]\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n"
                                          "[[reference]]\nname = 'seed'\nvoxels = [[2, 3, 3], [3, 4, 4]]\n"
                                          "[settings]\nsurrogates = 30\n");
  const ProgramResult result = run(request);
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(fs::exists(results() / "tavmap_seed-seed_contrast-wholeRef2Vox_stat-effect_statmap.nii.gz"));
}

TEST_F(RunCommand, PairsTakeTheReferenceFromOneRunAndTheVoxelsFromTheOther) {
  // Region B of the second run follows region A of the first.
  Series first = readSeries(folder() / "bold1.nii.gz"), second = readSeries(folder() / "bold2.nii.gz");
  for (int v = 1; v < small_study::kVolumes; ++v) {
    for (int i = 0; i < small_study::regionVoxels(); ++i) {
      const int x = i % 2, y = i / 2 % 2, z = i / 4;
      second.at(8 + x, 5 + y, 4 + z, v) += first.at(2 + x, 3 + y, 3 + z, v - 1) - 1000;
    }
  }
  writeSeries(folder() / "bold2.nii.gz", second);
  const fs::path request =
      write("",
            "[[condition]]\nname = 'across'\nwhole_run = true\npairs = [['run1', 'run2']]\n"
            "[[condition]]\nname = 'back'\nwhole_run = true\npairs = [['run2', 'run1']]\n");
  const ProgramResult result = run(request);
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json sidecar = read("small_seed-A_contrast-acrossRef2Vox_stat-effect_statmap.json");
  EXPECT_EQ(sidecar["Runs"][0]["Run"], "run2");
  EXPECT_EQ(sidecar["Runs"][0]["ReferenceFromRun"], "run1");
  const auto at = [&](const char* map) {
    const std::string name = "small_seed-A_contrast-" + std::string(map) + "_stat-effect_statmap.nii.gz";
    return formats::readImage((results() / name).string()).at(8, 5, 4);
  };
  const float threshold = sidecar["Thresholds"][1]["Threshold"];
  EXPECT_GT(at("acrossRef2Vox"), threshold);
  EXPECT_LT(at("acrossVox2Ref"), at("acrossRef2Vox") / 5);
  EXPECT_LT(at("backRef2Vox"),
            at("acrossRef2Vox") / 5);  // that way round the runs know nothing of each other
}

TEST_F(RunCommand, StandardisedDataStayInTheMaskAfterRegression) {
  small_study::writeBold(folder() / "bold1.nii.gz", 1, 0);
  std::string table = "noise\n";
  for (int v = 0; v < small_study::kVolumes; ++v) table += std::to_string((v * 7919) % 101 - 50) + "\n";
  scratch_.write("confounds.tsv", table);
  std::string text = small_study::request();
  text.replace(text.find("name = 'run1'\n"), 14,
               "name = 'run1'\nconfounds = 'confounds.tsv'\nregress = 'noise'\n");
  ASSERT_EQ(run(scratch_.write("r.toml", text)).exitCode, 0);
  const json record = read("small_seed-A_tavmap.json");
  EXPECT_EQ(record["Conditions"][0]["Voxels"]["below the inclusion threshold"], 0);
  const json whole = record["Conditions"][0];
  EXPECT_EQ(whole["Runs"][0]["ConfoundDegreesOfFreedom"], 1);
  EXPECT_EQ(whole["Runs"][0]["EffectiveVolumes"], small_study::kVolumes - 2);
  EXPECT_EQ(whole["Runs"][1]["EffectiveVolumes"], small_study::kVolumes - 1);
  EXPECT_EQ(whole["EffectiveVolumes"], 2 * small_study::kVolumes - 3);
}

TEST_F(RunCommand, OrdersAreChosenByACriterionAndTheirCurvesSaved) {
  ASSERT_EQ(run(write("order = 'bic'\nmax_order = 4\norder_sample = 20")).exitCode, 0);
  const json sidecar = read(kMap + ".json");
  EXPECT_EQ(sidecar["ModelOrder"], 1);
  EXPECT_EQ(sidecar["ModelOrderChosenBy"], "bic");
  EXPECT_TRUE(fs::exists(results() / "small_desc-order_timeseries.tsv"));
  const ProgramResult shown = tavmap({"order", write().string(), "--max-order", "3"}, folder());
  EXPECT_EQ(shown.exitCode, 0);
  EXPECT_NE(shown.out.find("    1 "), std::string::npos);
  EXPECT_NE(shown.out.find("A, whole: own course BIC 1, "), std::string::npos) << shown.out;
}

TEST_F(RunCommand, TheExamplePrintedIsARequest) {
  const ProgramResult result = tavmap({"run", "--example"}, folder());
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out.rfind("# A request for `tavmap run`.", 0), 0U);
}

TEST_F(RunCommand, HelpExplainsBothMethods) {
  const ProgramResult result = tavmap({"run", "--help"}, folder());
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.out.find("plugin: the numbers of the desktop plug-in, bit for bit"), std::string::npos);
  EXPECT_NE(result.out.find("calibrated: unlike the plug-in"), std::string::npos);
}

}  // namespace
