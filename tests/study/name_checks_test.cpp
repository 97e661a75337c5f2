#include "study/name_checks.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/sample_plan.h"

namespace study {
namespace {

std::string refusalOf(const StudyPlan& plan) {
  return messageOf<InputError>([&] { requireUsableNames(plan); });
}

TEST(NameChecks, OrdinaryNamesPass) {
  StudyPlan plan = sample_plan::plan();
  plan.regions[0].name = "größer als 3";
  EXPECT_NO_THROW(requireUsableNames(plan));
}

TEST(NameChecks, ControlCharactersAreRefusedWhereverTheyAre) {
  const auto refusalWith = [](const auto& change) {
    StudyPlan plan = sample_plan::plan();
    change(plan);
    return refusalOf(plan);
  };
  EXPECT_EQ(
      refusalWith([](StudyPlan& p) { p.request.output.prefix = "a\nb"; }),
      "study.toml: the prefix 'a\\x0ab' has control characters, which files and tables cannot hold; choose "
      "another name");
  EXPECT_NE(refusalWith([](StudyPlan& p) { p.runs[2].request.name = "\x1b[1m"; }).find("the run '\\x1b[1m'"),
            std::string::npos);
  EXPECT_NE(refusalWith([](StudyPlan& p) { p.regions[1].name = "V1\x7f"; }).find("the reference 'V1\\x7f'"),
            std::string::npos);
  EXPECT_NE(refusalWith([](StudyPlan& p) { p.conditions[1].name = "\tx"; }).find("the condition '\\x09x'"),
            std::string::npos);
}

TEST(NameChecks, BytesThatNoRecordCanHoldAreRefused) {
  StudyPlan plan = sample_plan::plan();
  plan.regions[0].name =
      "gr\xf6\xdf"
      "er";
  EXPECT_NE(refusalOf(plan).find("the reference 'gr\\xf6\\xdfer' is not UTF-8"), std::string::npos);
}

// The longest of them: PREFIX_seed-V1_contrast-housesRef2Vox_desc-thresholded_stat-effect_statmap.nii.gz
TEST(NameChecks, TheLongestFileNameDecidesToTheByte) {
  StudyPlan plan = sample_plan::plan();
  const std::string rest = "_seed-V1_contrast-housesRef2Vox_desc-thresholded_stat-effect_statmap.nii.gz";
  plan.request.output.prefix = std::string(kLongestFileName - rest.size(), 'p');
  EXPECT_NO_THROW(requireUsableNames(plan));
  plan.request.output.prefix += "p";
  EXPECT_EQ(refusalOf(plan),
            "study.toml: the file name '" + plan.request.output.prefix + rest +
                "' would have 256 bytes, and files can have 255; shorten the prefix or the name of "
                "reference 'V1' or condition 'houses'");
}

// Labels lose what is no letter or digit, the map set and the log keep it.
TEST(NameChecks, NamesOfReferencesAndRunsCountToo) {
  StudyPlan plan = sample_plan::plan();
  plan.regions[1].name = std::string(kLongestFileName - 11, '-');
  EXPECT_NO_THROW(requireUsableNames(plan));
  plan.regions[1].name += "-";
  EXPECT_NE(refusalOf(plan).find("-.tav' would have 256 bytes"), std::string::npos);
  plan = sample_plan::plan();
  plan.runs[1].vtcName = std::string(kLongestFileName - 4, 'r') + ".vtc";
  EXPECT_NE(refusalOf(plan).find("shorten the name of run 'b'"), std::string::npos);
}

}  // namespace
}  // namespace study
