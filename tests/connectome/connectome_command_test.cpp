// Whole runs of `tavmap connectome`.
#include <fmt/core.h>
#include <gtest/gtest.h>

#include <cmath>

#include "connectome/connectome_record.h"
#include "connectome/result_files.h"
#include "tests/support/run_command_fixture.h"

namespace {

class ConnectomeCommand : public SmallStudyRun {
 protected:
  ProgramResult connectome(const std::string& table = "", std::vector<std::string> more = {},
                           const std::string& settings = "") {
    std::vector<std::string> words = {"connectome",
                                      write(settings, "[connectome]\nsurrogates = 200\n" + table).string()};
    words.insert(words.end(), more.begin(), more.end());
    return tavmap(words, folder());
  }
  std::string refusal(const std::string& table, const std::string& settings = "") {
    const ProgramResult result = connectome(table, {}, settings);
    EXPECT_EQ(result.exitCode, 2) << result.err;
    return result.err;
  }
  connectome::EdgeMatrix matrix(const std::string& name) {
    std::vector<std::string> names;
    return connectome::readMatrixFile((results() / name).string(), names);
  }
};

constexpr const char* kInfluence = "small_contrast-whole_meas-Influence";

TEST_F(ConnectomeCommand, FindsThatRegionADrivesRegionB) {
  const ProgramResult result = connectome();
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto influence = matrix(fmt::format("{}_relmat.tsv", kInfluence)),
             p = matrix(fmt::format("{}_stat-pfwe_relmat.tsv", kInfluence));
  EXPECT_GT(influence.at(0, 1), influence.at(1, 0));
  EXPECT_LE(p.at(0, 1), 0.05);
  EXPECT_GT(p.at(2, 0), 0.05);
  const auto record = connectome::readRecordFile((results() / "small_connectome.json").string());
  EXPECT_EQ(record.conditions.size(), 2U);
  EXPECT_GE(record.conditions[0].measures[0].passing.back(), 1U);
  for (const auto& [file, size] : record.files)
    EXPECT_EQ(std::filesystem::file_size(results() / file), size) << file;
  EXPECT_NE(contentOf(results() / "small_contrast-whole_edges.tsv").find("A\tB"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(results() / "small_connectome.html"));
  const std::string svg = contentOf(results() / "figures" / fmt::format("{}_relmat.svg", kInfluence));
  EXPECT_NE(svg.find("</image><text"), std::string::npos) << "shapes that are not closed hide what follows";
  EXPECT_NE(svg.find("</text></svg>"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(results() / "figures" / fmt::format("{}_relmat.png", kInfluence)));
}

// Of the pairs (isOrdered: both ways) of a matrix.
template <class Is>
std::size_t countOf(const connectome::EdgeMatrix& matrix, bool isOrdered, Is is) {
  std::size_t count = 0;
  for (std::size_t row = 0; row < matrix.nodes; ++row)
    for (std::size_t column = isOrdered ? 0 : row + 1; column < matrix.nodes; ++column)
      count += row != column && is(matrix.at(row, column)) ? 1U : 0U;
  return count;
}

TEST_F(ConnectomeCommand, CountsInItsRecordWhatItsMatricesHold) {
  ASSERT_EQ(connectome("", {"--no-report"}).exitCode, 0);
  const auto record = connectome::readRecordFile((results() / "small_connectome.json").string());
  for (const connectome::ConditionRecord& condition : record.conditions) {
    for (const connectome::MeasureRecord& measure : condition.measures) {
      const bool isOrdered = measure.measure == "Influence";
      EXPECT_EQ(measure.edges, isOrdered ? 6U : 3U);
      const auto q = matrix(measure.qFile), pFamilyWise = matrix(measure.familyWiseFile),
                 values = matrix(measure.file);
      for (std::size_t i = 0; i < record.q.size(); ++i)
        EXPECT_EQ(measure.passing.at(i),
                  countOf(q, isOrdered, [&](double value) { return value <= record.q[i]; }));
      EXPECT_EQ(measure.familyWise, countOf(pFamilyWise, isOrdered, [](double p) { return p <= 0.05; }));
      EXPECT_EQ(
          countOf(values, true, [&](double value) { return std::abs(value) > measure.largest * 1.0001; }),
          0U);
      EXPECT_GT(
          countOf(values, true, [&](double value) { return std::abs(value) > measure.largest * 0.9999; }),
          0U);
    }
    const auto directions = matrix(condition.directionFile);
    EXPECT_EQ(condition.pairsTested, countOf(directions, false, [](double code) { return code != 0; }));
    EXPECT_EQ(condition.pairsSupported,
              countOf(directions, false, [](double code) { return code == 1 || code == 2; }));
  }
  EXPECT_EQ(record.conditions.at(0).pairsSupported, 1U) << "A leads B";
}

TEST_F(ConnectomeCommand, HasTheMeanCoursesThatMapsHave) {
  ASSERT_EQ(connectome().exitCode, 0);
  EXPECT_FALSE(std::filesystem::exists(results() / "small_seed-A_tavmap.json")) << "computes no map";
}

TEST_F(ConnectomeCommand, DoesNotDependOnThreadsAndKeepsWhatIsThere) {
  ASSERT_EQ(connectome("", {"--no-report", "-j", "1"}).exitCode, 0);
  const auto before = filesBelow(results());
  const ProgramResult kept = connectome("", {"--no-report", "--json"});
  ASSERT_EQ(kept.exitCode, 0) << kept.err;
  EXPECT_TRUE(nlohmann::json::parse(kept.out)["Kept"]);
  ASSERT_EQ(connectome("", {"--no-report", "-j", "3", "--force"}).exitCode, 0);
  EXPECT_EQ(differingFiles(before, filesBelow(results())), "");
}

TEST_F(ConnectomeCommand, RefusesToReplaceThatOfAnotherRequest) {
  ASSERT_EQ(connectome("", {"--no-report"}).exitCode, 0);
  const auto before = filesBelow(results());
  const ProgramResult result = connectome("condition_on = 'global signal'\n", {"--no-report", "--seed", "6"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("condition_on (global signal, was nothing), seed (6, was 5)"), std::string::npos)
      << result.err;
  EXPECT_EQ(differingFiles(before, filesBelow(results())), "");
  EXPECT_EQ(connectome("condition_on = 'global signal'\n", {"--no-report", "--force"}).exitCode, 0);
}

TEST_F(ConnectomeCommand, RefusesWhatHasNoConnectome) {
  EXPECT_NE(refusal("", "method = 'plugin'").find("method \"calibrated\" alone"), std::string::npos);
  EXPECT_NE(refusal("condition_on = 'D'\n").find("'D', which is no reference"), std::string::npos);
  EXPECT_NE(refusal("condition_on = ['all others', 'A']\n").find("all others contain every reference"),
            std::string::npos);
  EXPECT_NE(refusal("surrogate = 3\n").find("surrogates"), std::string::npos);
  const auto one = scratch_.write("one.toml",
                                  "prefix='one'\n[[run]]\nname='r'\nbold='bold1.nii.gz'\nmask='mask.nii.gz'\n"
                                  "[[reference]]\nlabel_image='dseg.nii.gz'\nlabels='A'\n");
  const ProgramResult single = tavmap({"connectome", one.string()}, folder());
  EXPECT_EQ(single.exitCode, 2);
  EXPECT_NE(single.err.find("two references or more"), std::string::npos) << single.err;
  const auto pairs =
      write("", "[[condition]]\nname = 'across'\nwhole_run = true\npairs = [['run1', 'run2']]\n");
  const ProgramResult across = tavmap({"connectome", pairs.string()}, folder());
  EXPECT_EQ(across.exitCode, 2);
  EXPECT_NE(across.err.find("all regions are of one run"), std::string::npos) << across.err;
}

TEST_F(ConnectomeCommand, IsConditionalOnARegionThatThenHasNoEdges) {
  ASSERT_EQ(connectome("condition_on = 'C-left'\n", {"--no-report"}).exitCode, 0);
  const auto influence = matrix(fmt::format("{}_relmat.tsv", kInfluence));
  EXPECT_TRUE(std::isnan(influence.at(0, 2)));
  EXPECT_TRUE(std::isfinite(influence.at(0, 1)));
}

TEST_F(ConnectomeCommand, OfAllOthersSaysSoAndHasNoSurrogates) {
  ASSERT_EQ(connectome("condition_on = 'all others'\n", {"--no-report"}).exitCode, 0);
  const auto record = connectome::readRecordFile((results() / "small_connectome.json").string());
  EXPECT_EQ(record.surrogates, 0U);
  EXPECT_EQ(record.conditions[0].measures[2].edges, 0U) << "the net influence has no test";
  EXPECT_LE(matrix(fmt::format("{}_stat-p_relmat.tsv", kInfluence)).at(0, 1), 0.01);
}

TEST_F(ConnectomeCommand, LeavesMapsOfTheSameRequestAlone) {
  ASSERT_EQ(run(write("fwe_draws = 0"), {"--no-report"}).exitCode, 0);
  const auto before = filesBelow(results());
  ASSERT_EQ(connectome("", {"--no-report"}, "fwe_draws = 0").exitCode, 0);
  const auto after = filesBelow(results());
  for (const auto& [name, content] : before) EXPECT_TRUE(after.at(name) == content) << name;
}

}  // namespace
