#include "host/choice_list.h"

#include <gtest/gtest.h>

namespace {

using host::Choice;
using host::choicesOf;
using host::enumerated;
using host::meantBy;

const std::vector<Choice> kRegions = {
    {1, "LH_Vis_1"}, {2, "LH_Vis_10"}, {3, "RH_Vis_1"}, {4, "motor"}, {5, "Motor"}};

std::string meant(const std::string& answer) {
  return enumerated(meantBy(answer, kRegions));
}

TEST(ChoiceList, TakesTheNumberedLinesWhoseNumbersAnswerTheQuestion) {
  const auto choices = choicesOf(
      {"", 1, 0, 3}, "Select VOIs\n0. Stop selecting\n 2. two words \n4. too many\n1.5 mm\nx. y\n3. \n");
  EXPECT_EQ(enumerated(choices), "0. Stop selecting, 2. two words");
}

TEST(ChoiceList, TakesAWholeNameForItselfThoughItIsAPartOfOthers) {
  EXPECT_EQ(meant("LH_Vis_1"), "1. LH_Vis_1");
  EXPECT_EQ(meant("lh_vis_1"), "1. LH_Vis_1");
}

TEST(ChoiceList, TellsCapitalsApartWhereNamesDifferInThemAlone) {
  EXPECT_EQ(meant("motor"), "4. motor");
  EXPECT_EQ(meant("Motor"), "5. Motor");
  EXPECT_EQ(meant("MOTOR"), "4. motor, 5. Motor");
}

TEST(ChoiceList, TakesAPartForEveryNameThatHasIt) {
  EXPECT_EQ(meant("rh"), "3. RH_Vis_1");
  EXPECT_EQ(meant("vis_1"), "1. LH_Vis_1, 2. LH_Vis_10, 3. RH_Vis_1");
  EXPECT_EQ(meant("amygdala"), "");
  EXPECT_EQ(meant(""), "");
}

TEST(ChoiceList, EnumeratesTenAtMost) {
  std::vector<Choice> many;
  for (int i = 1; i <= 12; ++i) many.push_back({i, "r"});
  EXPECT_TRUE(enumerated(many).ends_with("10. r and 2 more"));
}

}  // namespace
