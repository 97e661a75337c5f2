#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "report/reports.h"
#include "tests/report/sample_outputs.h"
#include "tests/support/scratch.h"

namespace {

using namespace report;
using testing::HasSubstr;

struct IndexPageTest : testing::Test {
  Scratch folder;
  IndexPageTest() {
    sample_outputs::writeTo(folder.folder() / "sub-1", {});
    sample_outputs::writeTo(folder.folder() / "sub 2", {});
  }
  [[nodiscard]] std::string index() const { return contentOf(folder.folder() / kIndexFile); }
};

TEST_F(IndexPageTest, LinksEveryReport) {
  const auto pages = rebuildReports(folder.folder());
  EXPECT_EQ(pages.size(), 3U);
  EXPECT_EQ(pages.back(), (folder.folder() / kIndexFile).string());
  EXPECT_THAT(index(), HasSubstr("href=\"sub-1/sample_report.html\""));
  EXPECT_THAT(index(), HasSubstr("href=\"sub%202/sample_report.html\""));
}

TEST_F(IndexPageTest, HasASmallPictureOfTheMainMap) {
  rebuildReports(folder.folder());
  EXPECT_THAT(index(),
              HasSubstr("alt=\"DTAV of V1, condition faces: three slices\" src=\"data:image/png;base64,"));
}

TEST_F(IndexPageTest, ListsWhatFailedFirst) {
  folder.write("failures_tavmap.tsv", "request\tmessage\nsub-03\tsub-03: no run\n");
  folder.write("sub-1/sample_desc-failures_tavmap.tsv", "reference\tmessage\nV9\tconstant courses\n");
  rebuildReports(folder.folder());
  const std::size_t request = index().find("no run"), reference = index().find("constant courses"),
                    done = index().find("class=\"thumbnail\"");
  ASSERT_NE(request, std::string::npos);
  ASSERT_NE(reference, std::string::npos);
  EXPECT_LT(request, done);
  EXPECT_LT(reference, done);
}

TEST_F(IndexPageTest, LooksNeitherIntoHiddenFoldersNorIntoTheWorkFolder) {
  sample_outputs::writeTo(folder.folder() / "work" / "x", {});
  sample_outputs::writeTo(folder.folder() / ".tavmap-stage", {});
  EXPECT_EQ(rebuildReports(folder.folder()).size(), 3U);
}

}  // namespace
