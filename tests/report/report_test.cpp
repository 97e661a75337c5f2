#include "report/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "formats/file_error.h"
#include "report/maps_section.h"
#include "report/reports.h"
#include "report/study_outputs.h"
#include "request/problem.h"
#include "tests/report/sample_outputs.h"
#include "tests/support/scratch.h"

namespace {

using namespace report;
using testing::HasSubstr;
using testing::Not;

struct ReportTest : testing::Test {
  Scratch folder;
  std::string pageOf(const sample_outputs::Sample& sample) {
    sample_outputs::writeTo(folder.folder(), sample);
    return contentOf(writeReport(folder.folder(), "sample"));
  }
};

TEST_F(ReportTest, HasEverySection) {
  const std::string html = pageOf({});
  for (const char* id :
       {"warnings", "summary", "maps", "peaks", "evidence", "limits", "methods", "provenance"}) {
    EXPECT_THAT(html, HasSubstr("<section id=\"" + std::string(id) + "\""));
    EXPECT_THAT(html, HasSubstr("<a href=\"#" + std::string(id) + "\">"));
  }
}

TEST_F(ReportTest, BeginsWithHowManyReferencesThereAre) {
  const std::string html = pageOf({});
  EXPECT_THAT(html, HasSubstr(">Directed influence between 1 reference region and every voxel.<"));
  std::filesystem::path record;
  for (const auto& entry : std::filesystem::directory_iterator(folder.folder()))
    if (entry.path().string().ends_with("_tavmap.json")) record = entry.path();
  std::filesystem::copy_file(record, folder.folder() / "sample_seed-Zz_tavmap.json");
  EXPECT_THAT(contentOf(writeReport(folder.folder(), "sample")),
              HasSubstr(">Directed influence between 2 reference regions and every voxel.<"));
}

// From each beginning to the next end, or to the end of all.
std::vector<std::string> parts(const std::string& html, const std::string& begin, const std::string& end) {
  std::vector<std::string> found;
  for (std::size_t at = 0; (at = html.find(begin, at)) != std::string::npos; ++at)
    found.push_back(html.substr(at, html.find(end, at + 1) - at));
  return found;
}

TEST_F(ReportTest, RowsOfATableHaveACellPerColumn) {
  const std::vector<std::string> tables = parts(pageOf({}), "<table", "</table>");
  EXPECT_GE(tables.size(), 4U);
  for (const std::string& table : tables) {
    const std::vector<std::string> rows = parts(table, "<tr", "<tr");
    const auto cells = [](const std::string& row) {
      return parts(row, "<th", ">").size() - parts(row, "<thead", ">").size() + parts(row, "<td", ">").size();
    };
    ASSERT_FALSE(rows.empty());
    for (const std::string& row : rows) EXPECT_EQ(cells(row), cells(rows[0])) << row;
  }
}

TEST_F(ReportTest, LoadsNothing) {
  const std::string html = pageOf({});
  EXPECT_THAT(html, HasSubstr("default-src &#39;none&#39;"));
  for (const char* outside : {"src=\"http", "href=\"http", "url(", "@import"})
    EXPECT_THAT(html, Not(HasSubstr(outside)));
}

TEST_F(ReportTest, SaysInWordsThatNothingSurvives) {
  sample_outputs::Sample nothing;
  nothing.survives = false;
  const std::string html = pageOf(nothing);
  EXPECT_THAT(html, HasSubstr("no voxel survives"));
  EXPECT_THAT(html, HasSubstr("No voxel survives at q = 0.05."));
}

TEST_F(ReportTest, HasNamesAsText) {
  const std::string html = pageOf({sample_outputs::las(), "<script>alert(1)</script>", "\"a\" & 'b'",
                                   "</script><img src=x>", "<i>lobe</i>"});
  EXPECT_THAT(html, Not(HasSubstr("<script>alert")));
  EXPECT_THAT(html, Not(HasSubstr("<img src=x>")));
  EXPECT_THAT(html, Not(HasSubstr("<i>lobe")));
  EXPECT_THAT(html, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
}

TEST_F(ReportTest, SavesItsPicturesBesideIt) {
  pageOf({});
  const std::string svg =
      contentOf(folder.folder() / "figures" / "sample_seed-V1_contrast-facesdTAV_stat-effect_statmap.svg");
  EXPECT_TRUE(svg.starts_with("<svg xmlns=\"http://www.w3.org/2000/svg\""));
  EXPECT_THAT(svg, HasSubstr("<defs><image id=\"underlay-sheet\""));
}

TEST_F(ReportTest, RemovesPicturesOfMapsThatAreGoneAndNoOthers) {
  const auto old = folder.write("figures/sample_seed-V1_contrast-old_stat-effect_statmap.svg");
  const auto other = folder.write("figures/sample_task-rest_seed-V1_contrast-old_stat-effect_statmap.svg");
  const auto own = folder.write("figures/sample_seed-V1_notes.txt");
  pageOf({});
  EXPECT_FALSE(std::filesystem::exists(old));
  EXPECT_TRUE(std::filesystem::exists(other));
  EXPECT_TRUE(std::filesystem::exists(own));
}

TEST_F(ReportTest, IsTheSameWhenRebuilt) {
  const std::string once = pageOf({});
  EXPECT_EQ(contentOf(writeReport(folder.folder(), "sample")), once);
}

// The colour of the marker, the only voxels whose direction was tested.
TEST_F(ReportTest, DrawsVoxelsWithoutSupportedDirectionFainter) {
  const auto picture =
      folder.folder() / "figures" / "sample_seed-V1_contrast-facesdTAV_stat-effect_statmap.svg";
  sample_outputs::Sample sample;
  pageOf(sample);
  const std::string supported = contentOf(picture);
  sample.direction = study::DirectionCode::kVoxelLeads;
  pageOf(sample);
  EXPECT_EQ(contentOf(picture), supported);
  sample.direction = study::DirectionCode::kNotSupported;
  pageOf(sample);
  EXPECT_NE(contentOf(picture), supported);
}

TEST_F(ReportTest, NamesWhatFailed) {
  folder.write("sample_desc-failures_tavmap.tsv", "reference\tmessage\nV<2>\tconstant courses\n");
  const std::string html = pageOf({});
  EXPECT_THAT(html, HasSubstr("Failed: <bdi>V&lt;2&gt;</bdi>. constant courses"));
}

TEST_F(ReportTest, OfFailuresAloneIsAPageToo) {
  folder.write("sample_desc-failures_tavmap.tsv", "reference\tmessage\nV2\tconstant courses\n");
  const std::string html = contentOf(writeReport(folder.folder(), "sample"));
  EXPECT_THAT(html, HasSubstr("constant courses"));
  EXPECT_THAT(html, HasSubstr("No reference was computed"));
}

TEST_F(ReportTest, OfAMissingImageNamesIt) {
  sample_outputs::writeTo(folder.folder(), {});
  const std::string gone = "sample_seed-V1_contrast-facesdTAV_stat-effect_statmap.nii.gz";
  std::filesystem::remove(folder.folder() / gone);
  try {
    writeReport(folder.folder(), "sample");
    FAIL();
  } catch (const formats::FileError& error) {
    EXPECT_THAT(error.what(), HasSubstr(gone));
  }
}

TEST_F(ReportTest, WithoutScriptHasMosaicsAndNoVolumes) {
  sample_outputs::writeTo(folder.folder(), {});
  const MapsSection maps = mapsSection(readStudyOutputs(folder.folder(), "sample"), false, 0);
  EXPECT_THAT(maps.html, HasSubstr("class=\"mosaic\""));
  EXPECT_THAT(maps.html, Not(HasSubstr("class=\"viewer")));
  EXPECT_EQ(maps.volumes, "");
}

TEST_F(ReportTest, OfAFolderWithoutResultsSaysWhatToDo) {
  EXPECT_THROW(rebuildReports(folder.folder()), study::InputError);
  EXPECT_THROW(rebuildReports(folder.folder() / "nowhere"), study::InputError);
}

}  // namespace
