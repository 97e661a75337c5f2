#include "study/file_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>

#include "formats/file_error.h"
#include "formats/map_set.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

const formats::Affine kAffine = {{3, 0, 0, -30, 0, 3, 0, -20, 0, 0, 4, -10, 0, 0, 0, 1}};

class FileStore : public testing::Test {
 protected:
  FileStore() {
    formats::VtcSidecar sidecar;
    sidecar.affine = kAffine;
    sidecar.spaceCode = 4;
    formats::writeVtcSidecar(vtc(), sidecar);
  }

  [[nodiscard]] std::string vtc() const { return (scratch.folder() / "run.vtc").string(); }
  [[nodiscard]] study::FileStore made() const {
    study::FileStore store(scratch.folder(), vtc());
    std::ostringstream reasons;
    EXPECT_TRUE(store.create({2, {0, 2, 0, 3, 0, 4, 1}, {"thres q=0.050"}}, reasons));
    return store;
  }

  Scratch scratch;
};

}  // namespace

TEST_F(FileStore, SavesWhatTheEngineFilled) {
  study::FileStore store = made();
  std::fill_n(store.values(1), 24, 7.5F);
  tav::MapHeader header{"rest: dTAV", 1.5F, 4.5F, {64, 255}, {16384, 65280}, {1.5F}};
  store.describe(1, header);
  store.saveMaps("p_seed.tav");
  const formats::MapSet saved = formats::loadMapSet((scratch.folder() / "p_seed.tav").string());
  EXPECT_EQ(saved.affine, kAffine);
  EXPECT_EQ(saved.spaceCode, 4);
  EXPECT_EQ(saved.zEnd, 4);
  EXPECT_THAT(saved.thresholdNames, ElementsAre("thres q=0.050"));
  ASSERT_EQ(saved.maps.size(), 2U);
  EXPECT_THAT(saved.maps[0].values, Each(0.0F));
  const formats::Map& map = saved.maps[1];
  EXPECT_THAT(map.values, Each(7.5F));
  EXPECT_EQ(map.name, "rest: dTAV");
  EXPECT_EQ(map.kind, 101);
  EXPECT_EQ(map.lowerThreshold, 1.5F);
  EXPECT_EQ(map.upperThreshold, 4.5F);
  EXPECT_EQ(map.positiveColorTo, 255);
  EXPECT_EQ(map.negativeColorFrom, 16384);
  EXPECT_TRUE(map.useColors);
  EXPECT_THAT(map.thresholds, ElementsAre(1.5F));
}

TEST_F(FileStore, KeepsTheLogForTheWriterOfTheRest) {
  study::FileStore store = made();
  EXPECT_EQ(store.saveLog("p_seed.log", "text\n"), "");
  EXPECT_EQ(store.logFile(), "p_seed.log");
  EXPECT_EQ(store.logText(), "text\n");
  EXPECT_FALSE(std::filesystem::exists(scratch.folder() / "p_seed.log"));
}

TEST_F(FileStore, EndsTheRunWhenTheMapsCannotBeSaved) {
  study::FileStore store = made();
  EXPECT_THROW(store.saveMaps("missing/p_seed.tav"), formats::FileError);
}

TEST_F(FileStore, NeedsTheSidecarOfTheRun) {
  std::filesystem::remove(formats::sidecarPathOf(vtc()));
  EXPECT_THAT(messageOf<study::RunError>([&] { static_cast<void>(made()); }),
              HasSubstr("run.vtc.json: the file is missing, so nobody knows where the voxels"));
}
