#include "study/study_folders.h"

#include <gtest/gtest.h>

#include "tests/support/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;

TEST(StudyFolders, AreMadeAndSweptWhenTheyAreEntered) {
  const Scratch scratch;
  scratch.write("out/.tavmap-import-1/run.vtc");
  scratch.write("out/.map.nii.gz.12-3.part");
  scratch.write("out/map.nii.gz");
  StudyFolders folders;
  folders.enter(scratch.folder() / "out");
  folders.enter(scratch.folder() / "new" / "work");
  EXPECT_TRUE(fs::is_directory(scratch.folder() / "new" / "work"));
  EXPECT_TRUE(fs::exists(scratch.folder() / "out" / "map.nii.gz"));
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch.folder() / "out"), fs::directory_iterator()), 1);
}

TEST(StudyFolders, JobFilesLastAsLongAsTheStudy) {
  const Scratch scratch;
  fs::path first, second;
  {
    StudyFolders folders;
    folders.enter(scratch.folder());
    first = folders.writeJob(scratch.folder(), "one\n");
    second = folders.writeJob(scratch.folder(), "two\n");
    EXPECT_NE(first, second);
    EXPECT_EQ(first.parent_path(), second.parent_path());
    std::string text;
    std::getline(std::ifstream(first) >> std::ws, text);
    EXPECT_EQ(text, "one");
    scratch.write(".tavmap-import-1/run.vtc");  // of a worker that was killed meanwhile
  }
  EXPECT_TRUE(fs::is_empty(scratch.folder()));
}

}  // namespace
}  // namespace study
