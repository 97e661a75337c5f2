// A whole session on a real run: picture blocks, one visual region as reference.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "formats/map_set.h"
#include "formats/nifti.h"
#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

const std::string kExample = std::string(APP_TEST_EXAMPLES) + "/oneback-small/";

// 7Networks_LH_Vis_4 is label 20, and so the 20th VOI. Conditions of the protocol in order of
// appearance: face is the first.
constexpr const char* kAnswers = R"(integer 20
integer 0
integer 2
text face
open bold.vtc
open events.prt
integer 1
cancel
text
save maps
)";

struct RealSession : testing::Test {
  Scratch folder;

  void SetUp() override {
    const ProgramResult converted = tavmap(
        {"convert", kExample + "bold_small.nii.gz", "bold.vtc", "--mask", kExample + "mask_small.nii.gz"},
        folder.path());
    ASSERT_EQ(converted.exitCode, 0) << converted.err;
    folder.write("events.prt", contentOf(kExample + "events.tsv"));
    folder.write("TAVPlugin.ini", "NumSurrogateSimulations= 200\n");
    folder.write("answers.txt", kAnswers);
  }

  ProgramResult run(const std::string& seed) const {
    return tavmap({"host", TAVMAP_PLUGIN, "--anatomy", kExample + "t1_small.nii.gz", "--vtc", "bold.vtc",
                   "--vois", kExample + "dseg_small.nii.gz", "--protocol", kExample + "events.tsv",
                   "--plugins-folder", ".", "--seed", seed, "--script", "answers.txt"},
                  folder.path());
  }
  std::string maps() const { return folder / "maps_7Networks_LH_Vis_4.tav"; }
  std::string log() const { return contentOf(folder / "maps_7Networks_LH_Vis_4.log"); }
};

std::size_t nonZero(const std::vector<float>& values) {
  return static_cast<std::size_t>(
      std::count_if(values.begin(), values.end(), [](float v) { return v != 0.0F; }));
}

TEST_F(RealSession, ComputesMapsOfTheMaskedBrain) {
  const ProgramResult session = run("11");
  ASSERT_EQ(session.exitCode, 0) << session.out << session.err;
  const formats::MapSet set = formats::loadMapSet(maps());
  ASSERT_EQ(set.maps.size(), 6U);
  EXPECT_EQ(set.maps[0].name, "face: Ref2Vox");
  const formats::LabelImage mask = formats::readLabelImage(kExample + "mask_small.nii.gz");
  for (const formats::Map& map : set.maps) {
    EXPECT_GT(nonZero(map.values), 1000U) << map.name;
    std::size_t outside = 0;
    for (std::size_t i = 0; i < map.values.size(); ++i)
      outside += mask.labels[i] == 0 && map.values[i] != 0.0F ? 1U : 0U;
    EXPECT_EQ(outside, 0U) << map.name;
  }
  for (std::size_t type = 0; type < 5; ++type)
    EXPECT_GT(set.maps[type].thresholds[0], 0.0F) << set.maps[type].name;
}

TEST_F(RealSession, PlacesTheMapsWhereTheRunLies) {
  ASSERT_EQ(run("11").exitCode, 0);
  const formats::MapSet set = formats::loadMapSet(maps());
  const formats::ImageHeader bold = formats::readImageHeader(kExample + "bold_small.nii.gz");
  EXPECT_EQ(set.grid(), bold.size);
  for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(set.affine.m[i], bold.affine.m[i], 1e-4);
}

TEST_F(RealSession, LogsBlocksAndCountsOfTheRun) {
  ASSERT_EQ(run("11").exitCode, 0);
  // Two blocks of faces at TR 2 s: 12.0 to 27.9 s and 228.0 to 243.9 s, see the events table.
  EXPECT_THAT(log(),
              AllOf(HasSubstr("\tintv(s):\n\t\t7\t-\t14\n\t\t115\t-\t122\n"),
                    HasSubstr("Effective nr. time-points: 14\n"), HasSubstr("\tVoxels skipped: 12402\t(")));
}

TEST_F(RealSession, RepeatsBitForBitWithTheSameSeed) {
  ASSERT_EQ(run("11").exitCode, 0);
  const std::string first = contentOf(maps());
  ASSERT_EQ(run("11").exitCode, 0);
  EXPECT_EQ(contentOf(maps()), first);
}

}  // namespace
