// A whole session, and one that ends from inside a dialog, under valgrind: no error, no leak.
#include <gtest/gtest.h>

#include <string>

#include "tests/app/noise_data.h"
#include "tests/support/program.h"

namespace {

const std::vector<std::string> kValgrind = {"valgrind",
                                            "--quiet",
                                            "--error-exitcode=99",
                                            "--leak-check=full",
                                            "--show-leak-kinds=definite,indirect,possible",
                                            "--errors-for-leak-kinds=definite,indirect,possible"};

struct SessionUnderValgrind : testing::Test {
  app_test::NoiseData data;
  ProgramResult run(const std::string& script) const {
    data.folder.write("answers.txt", script);
    return tavmap(
        ProgramStart{{"host", TAVMAP_PLUGIN, "--anatomy", "t1.nii", "--vtc", "run1.vtc", "--vois",
                      "vois.json", "--plugins-folder", ".", "--seed", "1", "--script", "answers.txt"},
                     data.folder.folder(),
                     "",
                     kValgrind});
  }
};

TEST_F(SessionUnderValgrind, IsCleanFromTheFirstDialogToTheSavedMaps) {
  const ProgramResult session =
      run("integer 3\ninteger 2\ntext face\nopen run1.vtc\nopen events.tsv\ninteger 1\nopen run2.vtc\n"
          "open volumes.tsv\ninteger 2\ncancel\ntext\nsave maps\n");
  EXPECT_EQ(session.exitCode, 0) << session.out << session.err;
  EXPECT_EQ(session.err, "");
}

TEST_F(SessionUnderValgrind, IsCleanWhenItEndsInsideADialog) {
  const ProgramResult session = run("integer 1\ninteger 0\ninteger 9\n");
  EXPECT_EQ(session.exitCode, 2) << session.out << session.err;
}

}  // namespace
