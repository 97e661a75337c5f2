#include "prepare/anatomy.h"

#include <gtest/gtest.h>

#include <limits>

#include "formats/nifti_writer.h"
#include "request/problem.h"
#include "tests/support/image_series.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

class Anatomy : public ::testing::Test {
 protected:
  Anatomy() {
    run_.grid = {{2, 1, 1}, {}};
    run_.request.bold = scratch_.folder() / "bold.nii.gz";
  }
  std::filesystem::path image(double left, int volumes = 1) const {
    Series series;
    series.header.size = {3, 3, 3};
    series.header.affine.at(0, 3) = left;
    series.header.sformCode = 1;
    series.header.volumes = volumes;
    series.header.series = volumes > 1;
    series.values.assign(27 * static_cast<std::size_t>(volumes), 6);
    writeSeries(scratch_.folder() / "t1.nii.gz", series);
    return scratch_.folder() / "t1.nii.gz";
  }
  std::string refusal(const std::filesystem::path& anatomy) const {
    return messageOf<InputError>([&] {
      requireUsableAnatomy(anatomy, run_);
      return 0;
    });
  }
  void writeBold(const std::vector<std::vector<float>>& volumes) {
    Series series;
    series.header.size = run_.grid.size;
    series.header.volumes = run_.volumes.volumes = static_cast<int>(volumes.size());
    series.header.series = true;
    for (const auto& volume : volumes)
      series.values.insert(series.values.end(), volume.begin(), volume.end());
    writeSeries(run_.request.bold, series);
  }
  Scratch scratch_;
  RunPlan run_;
};

TEST_F(Anatomy, MayBeNoneOrAnImageThatMeetsTheRuns) {
  EXPECT_NO_THROW(requireUsableAnatomy("", run_));
  EXPECT_NO_THROW(requireUsableAnatomy(image(1), run_));
}

TEST_F(Anatomy, ThatLiesElsewhereIsRefused) {
  const std::string said = refusal(image(40));
  EXPECT_NE(said.find("t1.nii.gz lies nowhere in the grid of " + run_.request.bold.string()),
            std::string::npos)
      << said;
}

TEST_F(Anatomy, OfSeveralVolumesIsRefused) {
  EXPECT_NE(refusal(image(0, 2)).find("t1.nii.gz has 2 volumes; give an image of one"), std::string::npos);
}

TEST_F(Anatomy, ThatCannotBeReadIsRefusedByName) {
  const auto file = scratch_.write("broken.nii.gz", "no image");
  EXPECT_NE(refusal(file).find("the anatomy " + file.string() + " cannot be read: "), std::string::npos);
  const auto whole = image(0);
  std::filesystem::resize_file(whole, std::filesystem::file_size(whole) - 12);
  EXPECT_NE(messageOf<InputError>([&] { return anatomyOnGrid(whole, run_.grid); }).find("cannot be read: "),
            std::string::npos);
}

TEST_F(Anatomy, MeansAreOfTheFirstVolumesThatAreNotDropped) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  writeBold({{100, 100}, {100, 100}, {1, kNan}, {2, kNan}, {6, kNan}});
  run_.volumes.dropped = 2;
  EXPECT_EQ(firstVolumes(run_).first, 3);
  EXPECT_EQ(firstVolumes(run_).last, 5);
  EXPECT_EQ(meanOfFirstVolumes(run_), (std::vector<float>{3, 0}));
}

TEST_F(Anatomy, MeansAreOfTwentyVolumesAtMost) {
  std::vector<std::vector<float>> volumes;
  for (int v = 1; v <= 30; ++v) volumes.push_back({static_cast<float>(v), v == 21 ? 1000.0F : 4.0F});
  writeBold(volumes);
  EXPECT_EQ(firstVolumes(run_).last, 20);
  EXPECT_EQ(meanOfFirstVolumes(run_), (std::vector<float>{10.5F, 4}));
}

}  // namespace
}  // namespace study
