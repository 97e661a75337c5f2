// The images that pictures draw maps on, as whole runs leave them.
#include <gmock/gmock.h>

#include "formats/nifti.h"
#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

const std::string kMean = "small_desc-mean_boldref", kAnatomy = "small_desc-anatomy_T1w";

class UnderlaysRun : public SmallStudyRun {
 protected:
  // top: lines above the tables.
  fs::path request(const std::string& top = "", const std::string& ofRun = "") {
    return scratch_.write(
        "one.toml", "prefix = 'small'\nseed = 5\n" + top + "\n[settings]\nsurrogates = 40\nfwe_draws = 20\n" +
                        "[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n" + ofRun +
                        "\n[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['A']\n");
  }
  // A head of one value everywhere on voxels of 1 mm, around the corner of the runs' grid.
  void writeAnatomy(const std::string& name, float value, double away = 0) {
    const formats::ImageHeader run = formats::readImageHeader((folder() / "bold1.nii.gz").string());
    formats::Image3D head;
    head.header.size = {20, 20, 20};
    for (int row = 0; row < 3; ++row) head.header.affine.at(row, 3) = run.affine.at(row, 3) - 10 + away;
    head.header.sformCode = 1;
    head.values.assign(8000, value);
    formats::writeImage((folder() / name).string(), head);
  }
  // Those of the reference, without what is drawn.
  [[nodiscard]] std::map<std::string, std::string> filesOfResult() const {
    auto files = filesBelow(results());
    std::erase_if(files, [](const auto& file) {
      return !file.first.starts_with("small_seed-A_") && !file.first.starts_with("small_A.");
    });
    return files;
  }
  formats::Image3D image(const std::string& name) const {
    return formats::readImage((results() / (name + ".nii.gz")).string());
  }
};

TEST_F(UnderlaysRun, TheMeanIsThatOfTheFirstVolumesKept) {
  ASSERT_EQ(run(request("", "drop_volumes = 3")).exitCode, 0);
  Series bold = readSeries(folder() / "bold1.nii.gz");
  const formats::Image3D mean = image(kMean);
  EXPECT_EQ(mean.header.dataType, formats::DataType::kFloat32);
  EXPECT_EQ(mean.header.affine, bold.header.affine);
  for (const auto& [x, y, z] : std::vector<std::array<int, 3>>{{0, 0, 0}, {5, 4, 3}, {11, 9, 7}}) {
    double sum = 0;
    for (int v = 3; v < 23; ++v) sum += static_cast<double>(bold.at(x, y, z, v));
    EXPECT_NEAR(mean.at(x, y, z), sum / 20, 1e-3);
  }
  const auto sidecar = read(kMean + ".json");
  EXPECT_EQ(sidecar["Volumes"], (nlohmann::json{4, 23}));
  EXPECT_EQ(sidecar["Sources"], nlohmann::json{"bids:input:bold1.nii.gz"});
  EXPECT_FALSE(fs::exists(results() / (kAnatomy + ".nii.gz")));
}

TEST_F(UnderlaysRun, TheAnatomyLiesOnTheGridOfTheRuns) {
  writeAnatomy("t1.nii.gz", 7);
  ASSERT_EQ(run(request("anatomy = 't1.nii.gz'")).exitCode, 0);
  const formats::Image3D found = image(kAnatomy);
  EXPECT_EQ(found.header.affine, formats::readImageHeader((folder() / "bold1.nii.gz").string()).affine);
  EXPECT_EQ(found.at(0, 0, 0), 7);
  EXPECT_EQ(found.at(11, 9, 7), 0);  // beyond the head
  EXPECT_EQ(read(kAnatomy + ".json")["Sources"][0], "bids:input:t1.nii.gz");
}

TEST_F(UnderlaysRun, NoNumberDependsOnThem) {
  writeAnatomy("t1.nii.gz", 7);
  ASSERT_EQ(run(request()).exitCode, 0);
  const auto before = filesOfResult();
  const ProgramResult again = run(request("anatomy = 't1.nii.gz'"), {"--json"});
  EXPECT_EQ(kept(again), std::vector<bool>{true}) << again.err;
  EXPECT_EQ(differingFiles(before, filesOfResult()), "");
  EXPECT_TRUE(fs::exists(results() / (kAnatomy + ".nii.gz")));
}

TEST_F(UnderlaysRun, TheyAreMadeAgainWhenMissingOrOutdated) {
  writeAnatomy("t1.nii.gz", 7);
  const fs::path asked = request("anatomy = 't1.nii.gz'");
  ASSERT_EQ(run(asked).exitCode, 0);
  const auto before = filesBelow(results());
  const fs::path mean = results() / (kMean + ".nii.gz"), anatomy = results() / (kAnatomy + ".nii.gz");
  const auto made = fs::last_write_time(mean);
  ASSERT_EQ(run(asked).exitCode, 0);
  EXPECT_EQ(fs::last_write_time(mean), made);  // stays
  fs::remove(mean);
  fs::remove(results() / (kAnatomy + ".json"));
  ASSERT_EQ(run(asked).exitCode, 0);
  EXPECT_EQ(differingFiles(before, filesBelow(results())), "");
  writeAnatomy("t1.nii.gz", 9);
  ASSERT_EQ(run(asked).exitCode, 0);
  EXPECT_EQ(image(kAnatomy).at(0, 0, 0), 9);
  writeAnatomy("t2.nii.gz", 11);
  fs::last_write_time(folder() / "t2.nii.gz", made);
  ASSERT_EQ(run(request("anatomy = 't2.nii.gz'")).exitCode, 0);
  EXPECT_EQ(image(kAnatomy).at(0, 0, 0), 11);  // older, but another one
}

TEST_F(UnderlaysRun, AnUnusableAnatomyIsRefusedBeforeAnyWork) {
  writeAnatomy("far.nii.gz", 7, 1000);
  scratch_.write("broken.nii.gz", "no image");
  writeAnatomy("cut.nii.gz", 7);
  fs::resize_file(folder() / "cut.nii.gz", fs::file_size(folder() / "cut.nii.gz") - 12);
  for (const auto& [name, words] :
       std::map<std::string, std::string>{{"far.nii.gz", "lies nowhere in the grid of"},
                                          {"broken.nii.gz", "cannot be read"},
                                          {"cut.nii.gz", "cannot be read"},
                                          {"absent.nii.gz", "absent.nii.gz"}}) {
    const ProgramResult refused = run(request("anatomy = '" + name + "'"));
    EXPECT_EQ(refused.exitCode, 2) << name;
    EXPECT_THAT(refused.err, HasSubstr(words)) << name;
    EXPECT_FALSE(fs::exists(results() / "small_seed-A_tavmap.json")) << name;
  }
}

}  // namespace
