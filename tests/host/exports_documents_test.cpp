#include <gtest/gtest.h>

#include "host/exports.h"
#include "tests/host/active_run.h"
#include "tests/host/sample_workspace.h"

namespace {

using host_test::ActiveRun;
using host_test::complaintAbout;
using host_test::SampleFiles;

TEST(DocumentOperations, KnowTheAnatomyAsTheOneDocument) {
  const SampleFiles files;
  ActiveRun active;
  active.workspace.openAnatomy(files.anatomy());
  EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 1);
  const int id = zqGetIDOfCurrentDocument();
  EXPECT_STREQ(zqGetDocumentTypeName(zqGetDocumentType(0)), "VMR");
  EXPECT_EQ(zqSetAsCurrentDocument(id), 1);
}

TEST(DocumentOperations, GiveTheDimensionsOfTheAnatomy) {
  const SampleFiles files;
  ActiveRun active;
  active.workspace.openAnatomy(files.anatomy());
  int x = 0, y = 0, z = 0;
  EXPECT_EQ(zqGetCurrentVMR(&x, &y, &z), 1);
  EXPECT_EQ(x, host_test::kSampleX);
  EXPECT_EQ(y, host_test::kSampleY);
  EXPECT_EQ(z, host_test::kSampleZ);
}

TEST(DocumentOperations, SayThatNothingIsOpen) {
  ActiveRun active;
  int x = 0, y = 0, z = 0;
  EXPECT_EQ(zqGetCurrentVMR(&x, &y, &z), 0);
  EXPECT_EQ(zqGetNumberOfDocsInWorkspace(), 0);
  EXPECT_EQ(zqGetIDOfCurrentDocument(), -1);
}

TEST(DocumentMisuse, IsNamed) {
  const auto nothing = [](host::Workspace&) {};
  int x = 0;
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetDocumentType(0); }),
            "zqGetDocumentType: document 0 does not exist, there are 0");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetDocumentTypeName(9); }),
            "zqGetDocumentTypeName: document type 9 does not exist");
  EXPECT_EQ(complaintAbout(nothing, [] { zqSetAsCurrentDocument(3); }),
            "zqSetAsCurrentDocument: document 3 does not exist, there are 0");
  EXPECT_EQ(complaintAbout(nothing, [&] { zqGetCurrentVMR(&x, nullptr, &x); }),
            "zqGetCurrentVMR: the y dimension is a null pointer");
}

}  // namespace
