#include "plugin/save_text.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>

#include "tests/fakes/vtc_file.h"
#include "tests/support/scratch.h"

namespace {

std::size_t filesIn(const std::string& folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) ++count;
  return count;
}

}  // namespace

TEST(SaveTextWhole, ReplacesAnOldFileAndLeavesNothingElse) {
  const Scratch folder;
  folder.write("a.log", "an older and longer text");
  EXPECT_EQ(saveTextWhole(folder.file("a.log"), "new\n"), "");
  EXPECT_EQ(contentOf(folder.file("a.log")), "new\n");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(SaveTextWhole, NamesTheReasonOfAFailure) {
  const Scratch folder;
  EXPECT_EQ(saveTextWhole(folder.file("none/a.log"), "new"), "No such file or directory");
}

TEST(SaveTextWhole, LeavesNoTemporaryFileWhenTheNameIsTaken) {
  const Scratch folder;
  std::filesystem::create_directories(folder.file("a.log/inner"));
  EXPECT_NE(saveTextWhole(folder.file("a.log"), "new"), "");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

// 255 bytes are what a name may have; the temporary one has no share in it.
TEST(SaveTextWhole, TheLongestNameThereIsCanBeWritten) {
  const Scratch folder;
  const std::string name = std::string(251, 'v') + ".log";
  EXPECT_EQ(saveTextWhole(folder.file(name), "new"), "");
  EXPECT_EQ(contentOf(folder.file(name)), "new");
  EXPECT_EQ(filesIn(folder.path()), 1U);
  EXPECT_EQ(saveTextWhole(folder.file("v" + name), "new"), "File name too long");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

// A limit on the size of files stands for the disk's.
TEST(SaveTextWhole, ReportsAFullDisk) {
  const Scratch folder;
  folder.write("a.log", "old");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit tiny = before;
  tiny.rlim_cur = 2;
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tiny), 0);
  const std::string reason = saveTextWhole(folder.file("a.log"), "new, and longer than that");
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(reason, "File too large");
  EXPECT_EQ(contentOf(folder.file("a.log")), "old");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}
