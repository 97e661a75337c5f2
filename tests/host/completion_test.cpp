#include "host/completion.h"

#include <gtest/gtest.h>

#include "tests/support/scratch.h"

namespace {

using Lines = std::vector<std::string>;
using host::namesFrom;
using host::pathsFrom;
using host::sharedBeginning;

class Paths : public testing::Test {
 protected:
  Paths() {
    for (const char* name : {"run1.vtc", "run2.vtc", ".hidden", "other"}) scratch_.write(name, "");
    std::filesystem::create_directory(scratch_.folder() / "runs of two");
    scratch_.write("runs of two/a.vtc", "");
  }
  Scratch scratch_;
};

TEST_F(Paths, BeginAsTypedAndFoldersEndWithASlash) {
  EXPECT_EQ(pathsFrom(scratch_.folder(), "run"), (Lines{"run1.vtc", "run2.vtc", "runs of two/"}));
  EXPECT_EQ(pathsFrom(scratch_.folder(), "run2"), Lines{"run2.vtc"});
  EXPECT_EQ(pathsFrom(scratch_.folder(), "x"), Lines{});
}

TEST_F(Paths, GoIntoFoldersWhoseNamesHaveBlanks) {
  EXPECT_EQ(pathsFrom(scratch_.folder(), "runs of two/"), Lines{"runs of two/a.vtc"});
  EXPECT_EQ(pathsFrom(scratch_.folder(), "no such folder/"), Lines{});
}

TEST_F(Paths, MayBeAbsolute) {
  EXPECT_EQ(pathsFrom("/", scratch_.file("oth")), Lines{scratch_.file("other")});
}

TEST_F(Paths, LeaveHiddenFilesOutUntilADotIsTyped) {
  EXPECT_EQ(pathsFrom(scratch_.folder(), "").size(), 4U);
  EXPECT_EQ(pathsFrom(scratch_.folder(), ".h"), Lines{".hidden"});
}

TEST(Names, BeginAsTypedWhateverTheCapitals) {
  EXPECT_EQ(namesFrom({"LH_Vis", "RH_Vis", "lh_som"}, "Lh"), (Lines{"LH_Vis", "lh_som"}));
}

TEST(SharedBeginning, IsWhatAllChoicesBeginWith) {
  EXPECT_EQ(sharedBeginning({"run1.vtc", "run2.vtc", "running"}), "run");
  EXPECT_EQ(sharedBeginning({"run", "run2"}), "run");
  EXPECT_EQ(sharedBeginning({"a", "b"}), "");
  EXPECT_EQ(sharedBeginning({"one"}), "one");
}

// The two letters share their first byte.
TEST(SharedBeginning, EndsBetweenCharacters) {
  EXPECT_EQ(sharedBeginning({"r\xC3\xA4", "r\xC3\xB6"}), "r");
}

}  // namespace
