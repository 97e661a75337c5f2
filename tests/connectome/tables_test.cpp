#include <gtest/gtest.h>

#include <cmath>

#include "connectome/node_table.h"
#include "formats/table.h"

namespace {

using connectome::EdgeDirection;
using connectome::EdgeMatrix;
using connectome::Measure;
using formats::Table;

// Of nodes a, b and c; no edge of c with itself, nor any of a and c.
struct ConnectomeTables : testing::Test {
  connectome::ConditionResult result;
  std::vector<connectome::Node> nodes = {
      {"a", "Vis", 5, {1, 2, 3}}, {"b", "", 7, {-4, 5.25, 6}}, {"c", "Vis", 9, {0, 0, 0}}};

  ConnectomeTables() {
    for (connectome::MeasureResult& measure : result.measures) {
      measure.values = EdgeMatrix(3);
      measure.tests = connectome::EdgeTests(3);
      for (EdgeMatrix* matrix :
           {&measure.values, &measure.tests.p, &measure.tests.q, &measure.tests.pFamilyWise})
        matrix->values.assign(9, std::nan(""));
    }
    put(Measure::kInfluence, 0, 1, 0.5, 0.04);
    put(Measure::kInfluence, 1, 0, 0.125, 0.5);
    put(Measure::kNet, 0, 1, 0.375, 0.06);
    put(Measure::kNet, 1, 0, -0.375, 0.06);
    put(Measure::kInstantaneous, 0, 1, 0.25, 0.9);
    put(Measure::kInstantaneous, 1, 0, 0.25, 0.9);
    put(Measure::kInfluence, 1, 2, 0.0625, 0.3);
    put(Measure::kInfluence, 2, 1, 0.75, 0.05);
    put(Measure::kNet, 1, 2, -0.6875, 0.02);
    put(Measure::kNet, 2, 1, 0.6875, 0.02);
    put(Measure::kInstantaneous, 1, 2, 0.03125, 0.8);
    put(Measure::kInstantaneous, 2, 1, 0.03125, 0.8);
    result.directions.assign(9, EdgeDirection::kNotTested);
    result.directions[3 * 1 + 2] = EdgeDirection::kColumnLeads;
    result.directions[3 * 2 + 1] = EdgeDirection::kRowLeads;
  }
  // p is half of q, and family-wise p twice q.
  void put(Measure measure, std::size_t row, std::size_t column, double value, double q) {
    connectome::MeasureResult& of = result.measures[static_cast<std::size_t>(measure)];
    of.values.at(row, column) = value;
    of.tests.p.at(row, column) = q / 2;
    of.tests.q.at(row, column) = q;
    of.tests.pFamilyWise.at(row, column) = 2 * q;
  }
  [[nodiscard]] Table nodeTable() const {
    return Table::parse(connectome::nodeTable(nodes, {2, 0, 1}, result, 0.05), "nodes.tsv");
  }
  [[nodiscard]] Table edgeTable(double q) const {
    return Table::parse(connectome::edgeTable(nodes, result, q), "edges.tsv");
  }
  static std::vector<double> row(const Table& table, std::size_t at,
                                 const std::vector<std::string>& columns) {
    std::vector<double> values;
    for (const std::string& column : columns)
      values.push_back(table.number(at, table.require(column)).value_or(-99));
    return values;
  }
};

TEST_F(ConnectomeTables, OfNodesHaveStrengthsOverAllOthers) {
  const Table table = nodeTable();
  ASSERT_EQ(table.rows(), 3U);
  const std::vector<std::string> strengths = {"out", "in", "net", "net_out", "net_in", "instantaneous"};
  EXPECT_EQ(row(table, 0, strengths), (std::vector<double>{0.5, 0.125, 0.375, 0.375, 0, 0.25}));
  EXPECT_EQ(row(table, 1, strengths), (std::vector<double>{0.1875, 1.25, -1.0625, 0, 1.0625, 0.28125}));
  EXPECT_EQ(row(table, 2, strengths), (std::vector<double>{0.75, 0.0625, 0.6875, 0.6875, 0, 0.03125}));
}

TEST_F(ConnectomeTables, OfNodesCountEdgesLeadsAndPlaces) {
  const Table table = nodeTable();
  const std::vector<std::string> counts = {"index", "voxels",  "edges_out", "edges_in",
                                           "leads", "follows", "place"};
  EXPECT_EQ(row(table, 0, counts), (std::vector<double>{1, 5, 1, 0, 0, 0, 2}));
  EXPECT_EQ(row(table, 1, counts), (std::vector<double>{2, 7, 0, 2, 0, 1, 3}));
  EXPECT_EQ(row(table, 2, counts), (std::vector<double>{3, 9, 1, 0, 1, 0, 1}));
  EXPECT_EQ(row(table, 1, {"x_mm", "y_mm", "z_mm"}), (std::vector<double>{-4, 5.2, 6}));
  EXPECT_EQ(table.cell(0, table.require("network")), "Vis");
  EXPECT_EQ(table.cell(1, table.require("network")), "n/a");
}

TEST_F(ConnectomeTables, OfEdgesBeginWithTheStrongestAndWithTheStrongerEnd) {
  const Table table = edgeTable(0.05);
  ASSERT_EQ(table.rows(), 2U);
  EXPECT_EQ(table.cell(0, 0), "c");
  EXPECT_EQ(table.cell(0, 1), "b");
  EXPECT_EQ(table.cell(1, 0), "a");
  EXPECT_EQ(table.cell(1, 1), "b");
  EXPECT_EQ(row(table, 0, {"influence", "back", "net", "instantaneous"}),
            (std::vector<double>{0.75, 0.0625, 0.6875, 0.03125}));
  EXPECT_EQ(
      row(table, 1, {"influence_p", "influence_q", "influence_pfwe", "back_q", "net_q", "instantaneous_q"}),
      (std::vector<double>{0.02, 0.04, 0.08, 0.5, 0.06, 0.9}));
  EXPECT_EQ(table.cell(0, table.require("direction")), "from leads");
  EXPECT_EQ(table.cell(1, table.require("direction")), "not tested");
}

TEST_F(ConnectomeTables, OfEdgesHaveWhatPassesInAnyMeasure) {
  EXPECT_EQ(edgeTable(0.01).rows(), 0U);
  EXPECT_EQ(edgeTable(0.02).rows(), 1U) << "the net influence of c and b";
  put(Measure::kInstantaneous, 0, 1, 0.25, 0.01);
  EXPECT_EQ(edgeTable(0.01).rows(), 1U);
}

}  // namespace
