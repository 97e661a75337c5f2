#include "plugin/save_text.h"

#include <gtest/gtest.h>
#include <unistd.h>

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

TEST(SaveTextWhole, ReportsAFullDisk) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device here";
  const Scratch folder;
  // The temporary name is the path plus the process id, so a link of that name leads it astray.
  const std::string path = folder.file("a.log");
  std::filesystem::create_symlink("/dev/full", path + ".tmp" + std::to_string(getpid()));
  EXPECT_EQ(saveTextWhole(path, "new"), "No space left on device");
  EXPECT_FALSE(std::filesystem::exists(path));
}
