#include "connectome/edge_group.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "connectome/result_files.h"
#include "formats/file_error.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using connectome::GroupMatrices;
using connectome::Measure;

// Net influence among eight nodes of each participant; those with `effect` have it on three edges that touch.
std::string matrixOf(std::mt19937& engine, double effect) {
  std::normal_distribution<double> noise;
  double net[8][8] = {};
  for (int a = 0; a < 8; ++a)
    for (int b = a + 1; b < 8; ++b) net[a][b] = noise(engine);
  net[0][1] += effect, net[1][2] += effect, net[1][5] += effect;
  std::string text = "a\tb\tc\td\te\tf\tg\th\n";
  for (int row = 0; row < 8; ++row)
    for (int column = 0; column < 8; ++column)
      text += (row == column ? "n/a" : std::to_string(row < column ? net[row][column] : -net[column][row])) +
              std::string(column == 7 ? "\n" : "\t");
  return text;
}

class EdgeGroup : public testing::Test {
 protected:
  GroupMatrices participants(int count, double effectOfSecondHalf, double effectOfFirst = 0) {
    std::mt19937 engine(3);
    std::vector<std::string> files;
    for (int i = 0; i < count; ++i)
      files.push_back(scratch_.write("p" + std::to_string(i) + ".tsv",
                                     matrixOf(engine, 2 * i >= count ? effectOfSecondHalf : effectOfFirst)));
    return connectome::readGroupMatrices(files, Measure::kNet);
  }
  Scratch scratch_;
};

inference::Model twoGroups(int count) {
  inference::Model model{{"first", "second"}, {}, {-1, 1}};
  for (int i = 0; i < count; ++i)
    for (const bool second : {false, true}) model.design.push_back((2 * i >= count) == second ? 1 : 0);
  return model;
}

TEST_F(EdgeGroup, FindsTheEdgesAndTheComponentInWhichTwoGroupsDiffer) {
  const GroupMatrices matrices = participants(20, 2.5);
  inference::TestOptions options;
  options.exchange = inference::Exchange::kPermutations;
  options.shuffles = 500;
  options.clusterFormingZ = 2.3;
  const auto result = connectome::testGroupEdges(twoGroups(20), matrices, options);
  EXPECT_EQ(result.test.tested, 28U);
  ASSERT_FALSE(result.components.empty());
  const connectome::EdgeComponent& first = result.components[0];
  EXPECT_GE(first.places.size(), 3U);
  EXPECT_EQ(first.sign, 1);
  EXPECT_LT(first.pFwe, 0.05);
  for (std::size_t place = 0; place < 28; ++place) {
    const auto edge = matrices.edges[place];
    const bool isPlanted = edge == std::pair{0, 1} || edge == std::pair{1, 2} || edge == std::pair{1, 5};
    if (isPlanted) {
      EXPECT_LT(result.test.pFwe[place], 0.05F);
    }
  }
}

TEST_F(EdgeGroup, WritesMatricesWhoseSignTurnsWithTheDirection) {
  const GroupMatrices matrices = participants(12, 3, 3);
  inference::TestOptions options;
  options.shuffles = 200;
  const auto result =
      connectome::testGroupEdges({{"mean"}, std::vector<double>(12, 1.0), {1}}, matrices, options);
  const auto files =
      connectome::writeGroupEdges(scratch_.folder(), "group_contrast-mean", "mean above 0", matrices, result);
  EXPECT_EQ(files.size(), 14U);
  std::vector<std::string> names;
  const auto t =
      connectome::readMatrixFile(scratch_ / "group_contrast-mean_meas-NetInfluence_stat-t_relmat.tsv", names);
  EXPECT_GT(t.at(0, 1), 4);
  EXPECT_EQ(t.at(1, 0), -t.at(0, 1));
  EXPECT_NE(contentOf(scratch_ / "group_contrast-mean_meas-NetInfluence_components.tsv").find("positive"),
            std::string::npos);
}

TEST_F(EdgeGroup, RefusesToFlipSignsOfInfluence) {
  GroupMatrices matrices = participants(8, 0);
  for (float& value : matrices.values) value = std::abs(value);
  const inference::Model mean{{"mean"}, std::vector<double>(8, 1.0), {1}};
  const auto message =
      messageOf<std::invalid_argument>([&] { (void)connectome::testGroupEdges(mean, matrices, {}); });
  EXPECT_NE(message.find("never below 0"), std::string::npos) << message;
}

TEST_F(EdgeGroup, RefusesParticipantsWithOtherNodes) {
  const auto a = scratch_.write("a.tsv", "A\tB\nn/a\t1\n-1\tn/a\n"),
             b = scratch_.write("b.tsv", "A\tC\nn/a\t1\n-1\tn/a\n");
  const auto message = messageOf<formats::FileError>([&] {
    (void)connectome::readGroupMatrices({a, b}, Measure::kNet);
  });
  EXPECT_NE(message.find("node 2 is 'C'"), std::string::npos) << message;
}

}  // namespace
