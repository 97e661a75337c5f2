#include "results/cluster_table.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "formats/table.h"
#include "tests/support/sample_result.h"

namespace study {
namespace {

PlacedCluster cluster() {
  PlacedCluster found;
  found.voxels = 5;
  found.volumeMm3 = 122.5;
  found.peaks = {{-0.1F, {1, 2, 3}, {-4.5, -0.00001, 6.12345}, "V1"},
                 {-0.05F, {7, 8, 9}, {10, 11, 12}, "none"}};
  found.centreMm = {1.5, 2, 3};
  found.labels = {{"V1", 2.0 / 3}, {"none", 1.0 / 3}};
  return found;
}

formats::Table table(const PlacedCluster& one) {
  ClusterTable made;
  made.add(tav::REF2VOX, {0.05, 0.25, 9, 8}, {one, one});
  made.add(tav::DTAV, {0.1, 0.125, 9, 8}, {one});
  return formats::Table::parse(made.text(), "clusters.tsv");
}

std::string cell(const formats::Table& table, std::size_t row, const char* column) {
  return table.cell(row, table.require(column));
}

TEST(ClusterTable, HasARowPerClusterWithItsNumbers) {
  const formats::Table made = table(cluster());
  ASSERT_EQ(made.rows(), 3U);
  const std::vector<std::pair<const char*, const char*>> cells = {{"map", "REF2VOX"},
                                                                  {"q", "0.05"},
                                                                  {"threshold", "0.25"},
                                                                  {"cluster", "1"},
                                                                  {"sign", "negative"},
                                                                  {"voxels", "5"},
                                                                  {"volume", "122.5"},
                                                                  {"peak", "-0.1"},
                                                                  {"peak_i", "1"},
                                                                  {"peak_j", "2"},
                                                                  {"peak_k", "3"},
                                                                  {"peak_x", "-4.5"},
                                                                  {"peak_y", "0"},
                                                                  {"peak_z", "6.123"},
                                                                  {"peak_label", "V1"},
                                                                  {"centre_x", "1.5"},
                                                                  {"centre_y", "2"},
                                                                  {"centre_z", "3"},
                                                                  {"labels", "66.7% V1; 33.3% none"},
                                                                  {"peak2", "-0.05"},
                                                                  {"peak2_i", "7"},
                                                                  {"peak2_z", "12"},
                                                                  {"peak2_label", "none"},
                                                                  {"peak3", "n/a"},
                                                                  {"peak4_label", "n/a"}};
  for (const auto& [column, text] : cells) EXPECT_EQ(cell(made, 0, column), text) << column;
  EXPECT_EQ(cell(made, 1, "cluster"), "2");
  EXPECT_EQ(cell(made, 2, "cluster"), "1");
  EXPECT_EQ(cell(made, 2, "map"), "DTAV");
  EXPECT_EQ(cell(made, 2, "q"), "0.1");
}

TEST(ClusterTable, WithoutNamesOfPlacesLabelsAreMissing) {
  PlacedCluster one = cluster();
  one.labels.clear();
  for (PlacedPeak& peak : one.peaks) peak.label.clear();
  const formats::Table made = table(one);
  for (const char* column : {"labels", "peak_label", "peak2_label"}) EXPECT_EQ(cell(made, 0, column), "n/a");
  EXPECT_EQ(cell(made, 0, "peak2"), "-0.05");
}

TEST(ClusterTable, WithoutClustersItIsItsHeader) {
  const std::string text = ClusterTable().text();
  EXPECT_EQ(text.find("map\tq\tthreshold\tcluster\tsign\tvoxels\tvolume\tpeak\t"), 0U) << text;
  EXPECT_EQ(text.find('\n'), text.size() - 1);
}

TEST(ClusterTable, TheSidecarDescribesEveryColumn) {
  const Request request = sample_result::request();
  const std::vector<RunPlan> runs = sample_result::runs();
  const ReferenceResult reference = sample_result::reference();
  const ResultContext context = sample_result::context(request, runs);
  LabelVolume volume;
  volume.file = "/data/raw/atlas.nii.gz";
  const PlaceNames names(volume);
  const auto json = clusterSidecar(context, reference, reference.conditions[0], &names);
  const formats::Table made = table(cluster());
  for (const std::string& column : made.columns())
    EXPECT_FALSE(json[column]["Description"].get<std::string>().empty()) << column;
  for (const char* place : {"peak_x", "peak4_z", "centre_y"}) EXPECT_EQ(json[place]["Units"], "mm") << place;
  EXPECT_EQ(json["volume"]["Units"], "mm^3");
  EXPECT_EQ(json["map"]["Levels"]["REF2VOX"], "influence of V1 on each voxel");
  EXPECT_EQ(json["LabelImage"], "bids:raw:atlas.nii.gz");
  EXPECT_EQ(json["Warnings"].size(), 2U);
  EXPECT_TRUE(clusterSidecar(context, reference, reference.conditions[0], nullptr)["LabelImage"].is_null());
}

}  // namespace
}  // namespace study
