#include "prepare/confound_table.h"

#include <gtest/gtest.h>

#include <cmath>

#include "request/confound_terms.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Names = std::vector<std::string>;

class Confounds : public ::testing::Test {
 protected:
  ConfoundTable table(const std::string& text) { return readConfounds(scratch_.write("c.tsv", text)); }
  Scratch scratch_;
};

TEST_F(Confounds, ReadsMissingValuesQuotesAndWindowsLineEnds) {
  const ConfoundTable t = table("\"csf\"\tfd\r\n1.5\tn/a\r\n-2e-3\t0.25\r\n");
  EXPECT_EQ(t.names, (Names{"csf", "fd"}));
  ASSERT_EQ(t.volumes(), 2U);
  EXPECT_EQ((*t.find("csf"))[1], -2e-3);
  EXPECT_TRUE(std::isnan((*t.find("fd"))[0]));
}

TEST_F(Confounds, NamesTheLineOfABadCell) {
  const std::string message = messageOf<InputError>([&] { table("a\tb\n1\t2\n3\tx\n"); });
  EXPECT_EQ(message,
            scratch_.folder().string() + "/c.tsv:3: 'x' is not a number; confounds hold numbers or n/a");
}

TEST_F(Confounds, NamesTheLineWithAMissingColumn) {
  const std::string message = messageOf<InputError>([&] { table("a\tb\n1\n"); });
  EXPECT_EQ(message, scratch_.folder().string() +
                         "/c.tsv:2: 1 columns where the header names 2; confounds are tab-separated");
}

TEST_F(Confounds, RefusesEmptyTables) {
  EXPECT_NE(messageOf<InputError>([&] { table(""); }).find("begins with a line of column names"),
            std::string::npos);
  EXPECT_NE(messageOf<InputError>([&] { table("a\n"); }).find("no rows"), std::string::npos);
}

TEST_F(Confounds, PresetsStandForColumns) {
  const std::string motion = "trans_x\ttrans_y\ttrans_z\trot_x\trot_y\trot_z";
  const ConfoundTable t =
      table(motion + "\ta_comp_cor_00\ta_comp_cor_01\tcosine00\tcosine01\n1\t1\t1\t1\t1\t1\t1\t1\t1\t1\n");
  EXPECT_EQ(expandConfoundTerms({"6motion"}, t.names, t.file.string()).size(), 6U);
  EXPECT_EQ(expandConfoundTerms({"acompcor2"}, t.names, t.file.string()),
            (Names{"a_comp_cor_00", "a_comp_cor_01"}));
  EXPECT_EQ(expandConfoundTerms({"acompcor1+cosine", "cosine01"}, t.names, t.file.string()),
            (Names{"a_comp_cor_00", "cosine00", "cosine01"}));
  EXPECT_EQ(expandConfoundTerms({"trans*"}, t.names, t.file.string()),
            (Names{"trans_x", "trans_y", "trans_z"}));
}

TEST_F(Confounds, ComponentsAreNumberedWithTwoDigits) {
  Names known;
  for (int i = 0; i < 12; ++i) known.push_back("a_comp_cor_" + std::to_string(100 + i).substr(1));
  const Names eleven = expandConfoundTerms({"acompcor11"}, known, "c.tsv");
  ASSERT_EQ(eleven.size(), 11U);
  EXPECT_EQ(eleven[9], "a_comp_cor_09");
  EXPECT_EQ(eleven[10], "a_comp_cor_10");
}

// At once and without a list of them all.
TEST_F(Confounds, MoreComponentsThanATableHoldsAreRefused) {
  const Names known = {"a_comp_cor_00", "a_comp_cor_01"};
  EXPECT_NE(messageOf<InputError>([&] {
              return expandConfoundTerms({"acompcor2147483647"}, known, "c.tsv");
            }).find("c.tsv: no column 'a_comp_cor_02', asked for by 'acompcor2147483647'"),
            std::string::npos);
}

TEST_F(Confounds, The36ParametersAreNineTimesFour) {
  std::string header, row;
  for (const char* name :
       {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z", "csf", "white_matter", "global_signal"}) {
    for (const char* ending : {"", "_derivative1", "_power2", "_derivative1_power2"}) {
      header += (header.empty() ? "" : "\t") + std::string(name) + ending;
      row += row.empty() ? "1" : "\t1";
    }
  }
  const ConfoundTable t = table(header + "\n" + row + "\n");
  EXPECT_EQ(expandConfoundTerms({"36p"}, t.names, t.file.string()).size(), 36U);
  EXPECT_EQ(expandConfoundTerms({"24motion"}, t.names, t.file.string()).size(), 24U);
  EXPECT_EQ(expandConfoundTerms({"9p"}, t.names, t.file.string()).size(), 9U);
}

TEST_F(Confounds, UnknownColumnsNameTheNearest) {
  const ConfoundTable t = table("csf\tglobal_signal\n1\t1\n");
  EXPECT_EQ(
      messageOf<InputError>([&] { return expandConfoundTerms({"global_signl"}, t.names, t.file.string()); }),
      scratch_.folder().string() + "/c.tsv: no column 'global_signl'; did you mean 'global_signal'?");
  EXPECT_EQ(messageOf<InputError>([&] { return expandConfoundTerms({"6motoin"}, t.names, t.file.string()); }),
            scratch_.folder().string() + "/c.tsv: no column '6motoin'; did you mean '6motion'?");
  EXPECT_NE(messageOf<InputError>([&] {
              return expandConfoundTerms({"wmcsf"}, t.names, t.file.string());
            }).find("no column 'white_matter', asked for by 'wmcsf'"),
            std::string::npos);
}

TEST_F(Confounds, LeadingMissingValuesBecomeTheMean) {
  const ConfoundTable t = table("d\nn/a\n1\n3\n");
  EXPECT_EQ(confoundColumns(t, {"d"}, 0)[0], (std::vector<double>{2, 1, 3}));
  EXPECT_EQ(confoundColumns(t, {"d"}, 1)[0], (std::vector<double>{1, 3}));
}

TEST_F(Confounds, LaterMissingValuesAreRefusedWithTheirVolume) {
  const ConfoundTable t = table("d\n1\nn/a\n3\n");
  EXPECT_EQ(messageOf<InputError>([&] { return confoundColumns(t, {"d"}, 0); }),
            scratch_.folder().string() +
                "/c.tsv: column 'd' has no number at volume 2; choose other columns or repair the table");
}

TEST_F(Confounds, DisplacementComesFromTheTableOrFromMotion) {
  EXPECT_EQ((*table("framewise_displacement\nn/a\n0.5\n").find("framewise_displacement"))[1], 0.5);
  const ConfoundTable t =
      table("trans_x\ttrans_y\ttrans_z\trot_x\trot_y\trot_z\n0\t0\t0\t0\t0\t0\n0.1\t0\t-0.2\t0.01\t0\t0\n");
  const std::vector<double> fd = framewiseDisplacement(t);
  EXPECT_TRUE(std::isnan(fd[0]));
  EXPECT_NEAR(fd[1], 0.1 + 0.2 + 0.01 * 50, 1e-12);
  EXPECT_NE(messageOf<InputError>([&] {
              return framewiseDisplacement(table("csf\n1\n"));
            }).find("censoring needs one"),
            std::string::npos);
}

TEST_F(Confounds, CountsVolumesBeforeTheSteadyState) {
  EXPECT_EQ(nonSteadyStateVolumes(table("csf\n1\n2\n")), 0);
  EXPECT_EQ(nonSteadyStateVolumes(
                table("non_steady_state_outlier00\tnon_steady_state_outlier01\n1\t0\n0\t1\n0\t0\n")),
            2);
  // The columns come in any order.
  EXPECT_EQ(nonSteadyStateVolumes(
                table("non_steady_state_outlier00\tnon_steady_state_outlier01\n0\t1\n0\t0\n1\t0\n0\t0\n")),
            3);
}

TEST_F(Confounds, AHoleIsNamedByItsVolumeInTheStoredImage) {
  const ConfoundTable t = table("d\n1\n2\nn/a\n3\n");
  EXPECT_EQ(messageOf<InputError>([&] { return confoundColumns(t, {"d"}, 1); }),
            scratch_.folder().string() +
                "/c.tsv: column 'd' has no number at volume 3; choose other columns or repair the table");
}

TEST(ConfoundTerm, RefusesEmptyNamesAndImpossibleCounts) {
  EXPECT_EQ(confoundTermProblem("6motion"), "");
  EXPECT_EQ(confoundTermProblem("6motion+"), "holds an empty name in '6motion+'");
  EXPECT_EQ(confoundTermProblem("acompcor1"), "");
  EXPECT_EQ(confoundTermProblem("tcompcor99"), "");
  EXPECT_EQ(confoundTermProblem("acompcor100"), "asks for 100 components; 1 to 99 are possible");
  EXPECT_EQ(confoundTermProblem("acompcor0"), "asks for 0 components; 1 to 99 are possible");
}

}  // namespace
}  // namespace study
