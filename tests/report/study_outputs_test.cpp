#include "report/study_outputs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/file_error.h"
#include "results/record_json.h"
#include "tests/report/sample_outputs.h"
#include "tests/support/scratch.h"

namespace {

using namespace report;
using testing::ElementsAre;

TEST(Prefixes, AreThoseOfRecordsAndOfFailures) {
  const Scratch folder;
  sample_outputs::writeTo(folder.folder(), {});
  folder.write("sub-01_desc-failures_tavmap.tsv", "reference\tmessage\nV1\tno voxel\n");
  folder.write("group_tavmap.tsv", "x\n");
  EXPECT_THAT(prefixesIn(folder.folder()), ElementsAre("sample", "sub-01"));
}

TEST(StudyOutputs, HaveRecordsAndFailures) {
  const Scratch folder;
  sample_outputs::writeTo(folder.folder(), {});
  folder.write("sample_desc-failures_tavmap.tsv", "reference\tmessage\nV2\tno voxel\n");
  folder.write("sample_request.toml", "prefix = \"sample\"\n");
  const StudyOutputs outputs = readStudyOutputs(folder.folder(), "sample");
  ASSERT_EQ(outputs.references.size(), 1U);
  EXPECT_EQ(study::recordText(outputs.references[0].record), study::recordText(sample_outputs::recordOf({})));
  ASSERT_EQ(outputs.failures.size(), 1U);
  EXPECT_EQ(outputs.failures[0].message, "no voxel");
  EXPECT_EQ(outputs.requestFile, "sample_request.toml");
}

TEST(StudyOutputs, OfADamagedRecordSayWhichFile) {
  const Scratch folder;
  folder.write("sample_seed-V1_tavmap.json", "{\"Key\": 5}");
  try {
    (void)readStudyOutputs(folder.folder(), "sample");
    FAIL();
  } catch (const formats::FileError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("sample_seed-V1_tavmap.json"));
  }
}

}  // namespace
