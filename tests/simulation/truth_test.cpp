#include "simulation/truth.h"

#include <gtest/gtest.h>

#include "formats/file_error.h"
#include "tests/support/scratch.h"

namespace {

using simulation::Truth;

std::string reasonAgainst(const std::string& text) {
  const Scratch folder;
  std::ofstream(folder.file("truth.json")) << text;
  try {
    (void)simulation::readTruth(folder.file("truth.json"));
  } catch (const formats::FileError& error) {
    EXPECT_EQ(error.fault(), formats::Fault::kInput);
    EXPECT_EQ(error.remedy(), "Give the truth.json that tavmap simulate wrote");
    return error.reason();
  }
  return "";
}

TEST(Truth, ReadsBackAsWritten) {
  const Scratch folder;
  const Truth written = truthOf(simulation::plantedModel(0.8), std::vector<std::size_t>(9, 30), 42, 0.8);
  writeTruth(folder.file("truth.json"), written);
  const Truth read = simulation::readTruth(folder.file("truth.json"));
  EXPECT_EQ(read.seed, 42U);
  EXPECT_EQ(read.strength, 0.8);
  ASSERT_EQ(read.regions.size(), written.regions.size());
  for (std::size_t k = 0; k < read.regions.size(); ++k) {
    EXPECT_EQ(read.regions[k].label, static_cast<std::int32_t>(k + 1));
    EXPECT_EQ(read.regions[k].voxels, 30U);
    EXPECT_EQ(read.regions[k].model.name, written.regions[k].model.name);
    EXPECT_EQ(read.regions[k].model.kind, written.regions[k].model.kind);
    EXPECT_EQ(read.regions[k].model.follow, written.regions[k].model.follow);
    EXPECT_EQ(read.regions[k].model.drive, written.regions[k].model.drive);
    EXPECT_EQ(read.regions[k].model.share, written.regions[k].model.share);
    EXPECT_EQ(read.regions[k].model.autoregression, written.regions[k].model.autoregression);
    EXPECT_EQ(read.regions[k].model.coherence, written.regions[k].model.coherence);
    EXPECT_EQ(read.regions[k].expected.ref2vox, written.regions[k].expected.ref2vox);
    EXPECT_EQ(read.regions[k].expected.vox2ref, written.regions[k].expected.vox2ref);
    EXPECT_EQ(read.regions[k].expected.inst, written.regions[k].expected.inst);
  }
}

TEST(Truth, ForeignFilesAreRefused) {
  EXPECT_NE(reasonAgainst("no JSON").find("it is no truth file: "), std::string::npos);
  EXPECT_NE(reasonAgainst("[]").find("it is no truth file: "), std::string::npos);
  EXPECT_EQ(reasonAgainst(R"({"seed": 1, "strength": 1, "regions": []})"),
            "it is no truth file: the first region is not the reference");
  EXPECT_EQ(reasonAgainst(R"({"seed": 1, "strength": 1, "regions": [
      {"label": 1, "name": "a", "voxels": 3, "kind": "driver"}]})"),
            "it is no truth file: unknown kind \"driver\"");
}

TEST(Truth, NumbersThatDoNotFitAreRefused) {
  for (const char* seed : {"1e300", "-1", "1.5", "18446744073709551616"}) {
    const std::string text = std::string("{\"seed\": ") + seed + ", \"strength\": 1, \"regions\": []}";
    EXPECT_EQ(reasonAgainst(text), "it is no truth file: a number is not whole, or out of range") << seed;
  }
}

}  // namespace
