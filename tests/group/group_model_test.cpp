#include "group/group_model.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/message_of.h"

namespace study {
namespace {

using ::testing::Test;

std::string problemOf(const std::string& text) {
  return messageOf<InputError>([&] { return parseGroupModel(text, "g.toml"); });
}

TEST(GroupModel, HasDefaultsForWhatIsNotSaid) {
  const GroupModel model = parseGroupModel("[[test]]\nname = 'mean'\n", "g.toml");
  ASSERT_EQ(model.questions.size(), 1U);
  EXPECT_EQ(model.questions[0].contrast, "mean");
  EXPECT_EQ(model.questions[0].groupColumn, "group");
  EXPECT_EQ(model.inference.shuffles, 5000);
  EXPECT_TRUE(model.inference.enhance);
  EXPECT_EQ(model.inference.smallestShare, 1);
}

TEST(GroupModel, ReadsItsOwnExample) {
  const GroupModel model = parseGroupModel(exampleGroupModel(), "example");
  ASSERT_EQ(model.questions.size(), 5U);
  EXPECT_EQ(model.questions[1].within, "faces - houses");
  EXPECT_EQ(model.questions[2].contrast, "patient - control");
  EXPECT_EQ(model.questions[2].blocks, "scanner");
  EXPECT_EQ(model.questions[2].leftOut, std::vector<std::string>{"07"});
  EXPECT_EQ(model.questions[3].edges, "NetInfluence");
  EXPECT_EQ(model.questions[4].covariates, (std::vector<std::string>{"age", "sex"}));
}

TEST(GroupModel, SaysWhereSomethingIsWrong) {
  EXPECT_EQ(problemOf("[inference]\nshufles = 3\n[[test]]\nname = 'a'\n").substr(0, 8), "g.toml:2");
  EXPECT_NE(problemOf("[inference]\nshufles = 3\n[[test]]\nname = 'a'\n").find("shuffles"),
            std::string::npos);
  EXPECT_NE(problemOf("[inference]\nseed = 2\n").find("asks nothing"), std::string::npos);
  EXPECT_NE(problemOf("[[test]]\nname = 'a-b'\n").find("letters and digits"), std::string::npos);
  EXPECT_NE(problemOf("[[test]]\nname = 'a'\n[[test]]\nname = 'a'\n").find("two tests"), std::string::npos);
  EXPECT_NE(problemOf("[[test]]\nname = 'a'\nwithin = 'faces'\n").find("faces - houses"), std::string::npos);
  EXPECT_NE(problemOf("[inference]\nconnectivity = 7\n[[test]]\nname = 'a'\n").find("6, 18 or 26"),
            std::string::npos);
}

TEST(Sides, ArePartedByAMinusBetweenBlanks) {
  EXPECT_EQ(sidesOf("faces - houses").first, "faces");
  EXPECT_EQ(sidesOf("ses-2 - ses-1").second, "ses-1");
  EXPECT_EQ(sidesOf("  a-b  -  c ").first, "a-b");
  for (const char* none : {"mean", "a-b", " - b", "a - ", "a - b - c", ""})
    EXPECT_TRUE(sidesOf(none).empty()) << none;
}

}  // namespace
}  // namespace study
