#include "workbench/result_underlays.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/scratch.h"
#include "tests/workbench/status_of.h"

namespace {

struct ResultUnderlaysTest : testing::Test {
  Scratch scratch;
  workbench::FolderGuard folders;

  ResultUnderlaysTest() {
    scratch.write("data/out/made_seed-V1_tavmap.json", "{}");
    folders.allow(scratch.folder() / "data");
  }
  // Requests whose files are gone cannot be read.
  void writeRequest(const std::string& anatomy) {
    for (const char* file : {"bold.nii.gz", "labels.nii.gz"})
      scratch.write(std::string("data/out/") + file, "");
    scratch.write("data/out/made_request.toml", "prefix = \"made\"\nfolder = \".\"\nanatomy = \"" + anatomy +
                                                    R"("
[[run]]
name = "run"
bold = "bold.nii.gz"
[[reference]]
label_image = "labels.nii.gz"
labels = "all"
[[condition]]
name = "whole"
whole_run = true
)");
  }
  [[nodiscard]] std::vector<std::string> paths() const {
    std::vector<std::string> found;
    for (const auto& one : workbench::underlaysOf(scratch.folder() / "data/out", "made", folders))
      found.push_back(one["path"]);
    return found;
  }
};

using Paths = std::vector<std::string>;

TEST_F(ResultUnderlaysTest, TheBestComesFirst) {
  writeRequest("../t1.nii.gz");
  scratch.write("data/t1.nii.gz", "");
  scratch.write("data/out/made_desc-mean_boldref.nii.gz", "");
  scratch.write("data/out/made_desc-anatomy_T1w.nii.gz", "");
  EXPECT_EQ(paths(),
            (Paths{"t1.nii.gz", "out/made_desc-anatomy_T1w.nii.gz", "out/made_desc-mean_boldref.nii.gz"}));
}

TEST_F(ResultUnderlaysTest, AnAnatomyThatMayNotBeReadIsLeftOut) {
  writeRequest("../../elsewhere.nii.gz");
  scratch.write("elsewhere.nii.gz", "");
  scratch.write("data/out/made_desc-mean_boldref.nii.gz", "");
  EXPECT_EQ(paths(), (Paths{"out/made_desc-mean_boldref.nii.gz"}));
}

TEST_F(ResultUnderlaysTest, ThereMayBeNone) {
  EXPECT_EQ(paths(), Paths{});
  scratch.write("data/out/made_request.toml", "this is no request");
  EXPECT_EQ(paths(), Paths{});
}

TEST_F(ResultUnderlaysTest, NamesOfOtherFilesAreRefused) {
  for (const char* name : {"", "other", "../out/made", "made_seed-V1"})
    EXPECT_EQ(statusOf([&] {
                static_cast<void>(workbench::underlaysOf(scratch.folder() / "data/out", name, folders));
              }),
              404)
        << name;
}

}  // namespace
