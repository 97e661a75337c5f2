// Every figure of the peak differs from the others, so that none can stand for another.
#include "group/group_tables.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "formats/table.h"
#include "group/group_names.h"

namespace study {
namespace {

GroupTestRecord testRecord() {
  GroupTestRecord record;
  record.test = "older";
  record.question = "is it larger in patients?";
  record.reference = "V1";
  record.condition = "faces";
  record.map = "dTAV";
  record.isZ = true;
  record.exchange = "permutations";
  record.shuffles = 499;
  record.rows = {{"01", "patients", {1}, {"a.nii.gz"}}, {"02", "", {1}, {"b.nii.gz", "c.nii.gz"}}};
  GroupPeak peak;
  peak.by = "tfce";
  peak.voxel = {11, 12, 13};
  peak.mm = {-21.5, 22.0004, 23.25};
  peak.voxels = 31;
  peak.volumeMm3 = 837;
  peak.effect = -1.25;
  peak.t = -4.5;
  peak.z = -3.75;
  peak.pFwe = 0.03125;
  peak.pTfce = 0.0625;
  peak.pMass = 0.125;
  peak.qFdr = std::numeric_limits<double>::quiet_NaN();
  peak.participants = 41;
  peak.directions = {51, 52, 53, 54};
  peak.values = {{"01", 6.5, 7.5}, {"02", 8.5, 9.5}};
  GroupPeak second = peak;
  second.t = 4.25;
  second.values.clear();
  record.peaks = {peak, second};
  return record;
}

formats::Table clusters(const GroupTestRecord& record) {
  return formats::Table::parse(groupClusterTable(record), "clusters.tsv");
}

std::vector<std::string> cells(const formats::Table& table, std::size_t row,
                               const std::vector<std::string>& columns) {
  std::vector<std::string> found;
  for (const std::string& column : columns) found.push_back(table.cell(row, table.require(column)));
  return found;
}

using Cells = std::vector<std::string>;

TEST(GroupClusterTable, HasThePlaceOfEveryPeak) {
  const formats::Table table = clusters(testRecord());
  ASSERT_EQ(table.rows(), 2U);
  EXPECT_EQ(cells(table, 0, {"cluster", "by", "sign", "voxels", "volume_mm3"}),
            (Cells{"1", "tfce", "-", "31", "837"}));
  EXPECT_EQ(cells(table, 0, {"x", "y", "z", "i", "j", "k"}),
            (Cells{"-21.5", "22", "23.25", "11", "12", "13"}));
  EXPECT_EQ(cells(table, 1, {"cluster", "sign"}), (Cells{"2", "+"}));
}

TEST(GroupClusterTable, HasTheStatisticsOfEveryPeak) {
  const formats::Table table = clusters(testRecord());
  EXPECT_EQ(
      cells(table, 0,
            {"effect", "t", "z_score", "p_fwe", "p_fwe_tfce", "p_fwe_cluster", "q_fdr", "participants"}),
      (Cells{"-1.25", "-4.5", "-3.75", "0.03125", "0.0625", "0.125", "n/a", "41"}));
}

TEST(GroupClusterTable, HasDirectionsOfDifferencesOfOneConditionAlone) {
  GroupTestRecord record = testRecord();
  EXPECT_FALSE(clusters(record).find("reference_leads")) << "z has no direction";
  record.isZ = false;
  const formats::Table table = clusters(record);
  EXPECT_EQ(cells(table, 0, {"reference_leads", "voxel_leads", "not_supported", "not_tested"}),
            (Cells{"51", "52", "53", "54"}));
  record.within = "faces - houses";
  EXPECT_FALSE(clusters(record).find("reference_leads"));
}

TEST(GroupClusterTable, DescribesItsColumns) {
  const nlohmann::ordered_json sidecar = groupClusterSidecar(testRecord());
  const formats::Table table = clusters(testRecord());
  for (const std::string& column : table.columns())
    EXPECT_FALSE(sidecar.at(column).at("Description").get<std::string>().empty()) << column;
  EXPECT_EQ(sidecar.size(), table.columns().size() + 1);
}

TEST(GroupValueTable, HasARowPerParticipantOfThePeaksThatHaveValues) {
  const formats::Table table = formats::Table::parse(groupValueTable(testRecord()), "values.tsv");
  ASSERT_EQ(table.rows(), 2U);
  const Cells columns = {"cluster", "participant", "group", "value", "t_without"};
  EXPECT_EQ(table.columns(), columns);
  EXPECT_EQ(cells(table, 0, columns), (Cells{"1", "01", "patients", "6.5", "7.5"}));
  EXPECT_EQ(cells(table, 1, columns), (Cells{"1", "02", "n/a", "8.5", "9.5"}));
}

TEST(GroupValueWords, SayWhatTheValuesAre) {
  GroupTestRecord record = testRecord();
  EXPECT_EQ(groupValueWords(record),
            "z against each voxel's own null values of the dTAV map of reference V1, faces");
  record.isZ = false;
  record.session = "2";
  record.task = "rest";
  EXPECT_EQ(groupValueWords(record), "dTAV map of reference V1, faces, session 2, task rest");
  record.session.clear();
  record.sessions = "first";
  EXPECT_EQ(groupValueWords(record), "dTAV map of reference V1, faces, sessions first, task rest");
}

TEST(GroupImageSidecar, NamesWhatItIsMadeFrom) {
  const nlohmann::ordered_json sidecar = groupImageSidecar(testRecord(), group_image::kPTfce);
  EXPECT_EQ(sidecar["Units"], "probability");
  EXPECT_EQ(sidecar["Sources"], (nlohmann::ordered_json{"a.nii.gz", "b.nii.gz", "c.nii.gz"}));
  EXPECT_EQ(sidecar["Participants"], 2);
  EXPECT_EQ(sidecar["Exchange"], "permutations");
  EXPECT_EQ(sidecar["Shuffles"], 499);
}

}  // namespace
}  // namespace study
