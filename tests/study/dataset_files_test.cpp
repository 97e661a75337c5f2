#include "study/dataset_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "study/study_seed.h"
#include "tests/support/sample_result.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

TEST(DatasetFiles, PartsGiveWhatOneCommandWouldHaveWritten) {
  const Scratch scratch;
  const auto out = scratch.folder() / "out", alone = scratch.folder() / "alone",
             part = scratch.folder() / "parts/sub-01";
  for (const auto& folder : {out, alone, part}) std::filesystem::create_directories(folder);
  writeDatasetFiles(sample_result::request(), "1.2.3", alone);
  writeDatasetFiles(sample_result::request(), "1.2.3", part);
  gatherDatasetFiles(out, scratch.folder() / "parts", {"sub-01"});
  EXPECT_EQ(differingFiles(filesBelow(alone), filesBelow(out)), "");
  EXPECT_TRUE(std::filesystem::exists(out / "dataset_description.json"));
}

TEST(DatasetFiles, FailuresOfAllPartsReplaceWhatWasSaidOfThoseAskedFor) {
  const Scratch scratch;
  const std::string header = "request\tmessage\n";
  const auto table =
      scratch.write("out/failures_tavmap.tsv", header + "sub-01\tsub-01: old\nsub-09\tsub-09: other\n");
  (void)scratch.write("parts/sub-03/failures_tavmap.tsv", header + "sub-03\tsub-03: no mask\n");
  (void)scratch.write("parts/planning/failures_tavmap.tsv", header + "sub-02\tsub-02: no events\n");
  gatherDatasetFiles(scratch.folder() / "out", scratch.folder() / "parts", {"sub-01", "sub-03"});
  EXPECT_EQ(contentOf(table),
            header + "sub-09\tsub-09: other\nsub-02\tsub-02: no events\nsub-03\tsub-03: no mask\n");
}

TEST(DatasetFiles, WithoutPartsEverythingStays) {
  const Scratch scratch;
  const auto table = scratch.write("out/failures_tavmap.tsv", "request\tmessage\nsub-01\tsub-01: old\n");
  gatherDatasetFiles(scratch.folder() / "out", scratch.folder() / "parts", {"sub-01"});
  EXPECT_THAT(contentOf(table), testing::HasSubstr("old"));
}

TEST(StudySeed, IsDrawnOnceAndKept) {
  const Scratch scratch;
  Request request;
  request.output = {scratch.folder() / "out", "", "sub-01"};
  EXPECT_FALSE(keptSeed(request).has_value());
  EXPECT_FALSE(std::filesystem::exists(scratch.folder() / "out"));
  const std::uint32_t drawn = drawnSeed(request);
  EXPECT_EQ(keptSeed(request), drawn);
  EXPECT_EQ(drawnSeed(request), drawn);
  EXPECT_EQ(contentOf(scratch.folder() / "out" / "work" / "sub-01.seed"), std::to_string(drawn) + "\n");
}

}  // namespace
}  // namespace study
