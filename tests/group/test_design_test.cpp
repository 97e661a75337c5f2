#include "group/test_design.h"

#include <gtest/gtest.h>

#include "formats/file_error.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

constexpr const char* kTable =
    "participant_id\tgroup\tage\tsex\tsite\n"
    "sub-01\tpatient\t20\tF\tA\n"
    "sub-02\tcontrol\t30\tM\tA\n"
    "03\tpatient\t40\tM\tB\n"
    "sub-04\tcontrol\tn/a\tF\tB\n"
    "sub-05\tcontrol\t50\tF\tB\n";

class Designs : public ::testing::Test {
 protected:
  GroupDesign make(const GroupQuestion& question) const { return groupDesign(question, labels_, table()); }
  Participants table() const { return Participants::read(scratch_.write("participants.tsv", kTable)); }
  std::string problemOf(const GroupQuestion& question) const {
    return messageOf<InputError>([&] { return make(question); });
  }
  static GroupQuestion question(const std::string& contrast, std::vector<std::string> covariates = {}) {
    GroupQuestion asked;
    asked.name = "t";
    asked.contrast = contrast;
    asked.covariates = std::move(covariates);
    return asked;
  }
  Scratch scratch_;
  std::vector<std::string> labels_ = {"01", "02", "03", "04", "05"};
};

TEST_F(Designs, OfAMeanAreOnesAndSignFlips) {
  const GroupDesign design = make(question("mean"));
  EXPECT_EQ(design.model.design, std::vector<double>(5, 1.0));
  EXPECT_EQ(design.model.contrast, std::vector<double>{1});
  EXPECT_EQ(design.exchange, inference::Exchange::kSignFlips);
  EXPECT_EQ(design.words, "the mean differs from 0");
}

TEST_F(Designs, OfGroupsHaveAColumnEach) {
  const GroupDesign design = make(question("patient - control"));
  EXPECT_EQ(design.model.columns, (std::vector<std::string>{"control", "patient"}));
  EXPECT_EQ(design.model.contrast, (std::vector<double>{-1, 1}));
  EXPECT_EQ(design.model.design, (std::vector<double>{0, 1, 1, 0, 0, 1, 1, 0, 1, 0}));
  EXPECT_EQ(design.levels[0], "patient");
  EXPECT_EQ(design.exchange, inference::Exchange::kPermutations);
}

TEST_F(Designs, CentreCovariatesAndLeaveOutWhoHasNone) {
  const GroupDesign design = make(question("age", {"age", "sex"}));
  EXPECT_EQ(design.rows, (std::vector<std::size_t>{0, 1, 2, 4}));
  ASSERT_EQ(design.leftOut.size(), 1U);
  EXPECT_NE(design.leftOut[0].find("sub-04 has no 'age'"), std::string::npos);
  EXPECT_EQ(design.model.contrast, (std::vector<double>{0, 1, 0}));
  const std::vector<double> expected = {1, -15, -0.5, 1, -5, 0.5, 1, 5, 0.5, 1, 15, -0.5};
  EXPECT_EQ(design.model.design, expected);
  EXPECT_EQ(design.words, "it changes with age, given sex");
}

TEST_F(Designs, NumberBlocks) {
  GroupQuestion asked = question("patient - control");
  asked.blocks = "site";
  EXPECT_EQ(make(asked).blocks, (std::vector<int>{0, 0, 1, 1, 1}));
}

TEST_F(Designs, RefuseWhatTheyCannotMake) {
  EXPECT_NE(problemOf(question("patient - contrl")).find("did you mean 'control'"), std::string::npos);
  EXPECT_NE(problemOf(question("weight")).find("neither"), std::string::npos);
  EXPECT_NE(problemOf(question("mean", {"weight"})).find("no column 'weight'"), std::string::npos);
  EXPECT_NE(problemOf(question("mean", {"participant_id"})).find("numbers and words"), std::string::npos);
  GroupQuestion same = question("mean", {"group"});
  labels_ = {"01", "03"};
  EXPECT_NE(problemOf(same).find("different words"), std::string::npos) << problemOf(same);
  EXPECT_NE(problemOf(question("patient - control")).find("no participant has 'control'"), std::string::npos);
}

TEST(ParticipantsTable, IsAskedForWhereThereIsNone) {
  EXPECT_NE(messageOf<InputError>([] { return Participants().value("age", "01"); }).find("--participants"),
            std::string::npos);
}

TEST(ParticipantsTable, HasOneRowEach) {
  const Scratch scratch;
  const auto file = scratch.write("p.tsv", "participant_id\tage\nsub-01\t3\n01\t4\n");
  EXPECT_NE(messageOf<formats::FileError>([&] { return Participants::read(file); }).find("has a row already"),
            std::string::npos);
}

}  // namespace
}  // namespace study
