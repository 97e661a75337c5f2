// A second request into the folder and under the prefix of a first, as a user meets it.
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;

class OtherRequest : public SmallStudyRun {
 protected:
  // Over one condition and the labels given.
  fs::path shorter(const std::string& labels) {
    std::string text = small_study::request();
    text.resize(text.find("[[condition]]\nname = 'face'"));
    text.replace(text.find("'all'"), 5, labels);
    return scratch_.write("s.toml", text);
  }
};

TEST_F(OtherRequest, IsRefusedBeforeAnyWorkAndReplacesOnDemand) {
  ASSERT_EQ(run(write()).exitCode, 0);
  const auto before = filesBelow(results());
  const ProgramResult refused = run(write("fdr_constant = 1"));
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.err.find("They differ in 'A', 'B', 'C-left': constant that divides q: 1.5 there, 1 now"),
            std::string::npos)
      << refused.err;
  EXPECT_EQ(differingFiles(before, filesBelow(results())), "");
  EXPECT_EQ(kept(run(write("fdr_constant = 1"), {"--json", "--force"})), std::vector<bool>(3, false));
  EXPECT_EQ(kept(run(write("fdr_constant = 1"), {"--json"})), std::vector<bool>(3, true));
}

TEST_F(OtherRequest, MapsOfConditionsThatAreGoneGoWhenForced) {
  ASSERT_EQ(run(shorter("'all'")).exitCode, 0);
  const auto fresh = filesBelow(results());
  fs::remove_all(results());
  ASSERT_EQ(run(write()).exitCode, 0);
  ASSERT_GT(filesBelow(results()).size(), fresh.size());
  const ProgramResult refused = run(shorter("'all'"));
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.err.find("conditions: 'whole', 'face' there, 'whole' now"), std::string::npos)
      << refused.err;
  ASSERT_EQ(run(shorter("'all'"), {"--force"}).exitCode, 0);
  EXPECT_EQ(differingFiles(fresh, filesBelow(results())), "");
}

TEST_F(OtherRequest, ResultsOfReferencesThatAreGoneStayUntilForced) {
  ASSERT_EQ(run(shorter("'B'")).exitCode, 0);
  const auto fresh = filesBelow(results());
  fs::remove_all(results());
  ASSERT_EQ(run(shorter("'all'")).exitCode, 0);
  const auto all = filesBelow(results());
  const ProgramResult fewer = run(shorter("'B'"));
  EXPECT_EQ(fewer.exitCode, 0) << fewer.err;
  EXPECT_NE(fewer.out.find("that this request does not have: 'A' (small_seed-A_tavmap.json), 'C-left' "
                           "(small_seed-Cleft_tavmap.json). They stay; --force removes them"),
            std::string::npos)
      << fewer.out;
  // What is kept of the request, and the report that quotes it, are the new one's.
  EXPECT_EQ(differingFiles(all, filesBelow(results())), "small_report.html\nsmall_request.toml\n");
  const ProgramResult forced = run(shorter("'B'"), {"--force"});
  EXPECT_EQ(forced.exitCode, 0) << forced.err;
  EXPECT_NE(forced.out.find("removed from " + results().string()), std::string::npos) << forced.out;
  EXPECT_EQ(differingFiles(fresh, filesBelow(results())), "");
}

TEST_F(OtherRequest, NamesThatBecomeOneFileNameAreRefused) {
  scratch_.write("dseg.tsv", "index\tname\n1\tA-b\n2\tAb\n3\tC\n");
  const ProgramResult result = run(write());
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("the references 'A-b' and 'Ab' would share their files"), std::string::npos)
      << result.err;
  EXPECT_FALSE(fs::exists(results()));
}

}  // namespace
