// Files that appear whole where the file system has none without a name.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "formats/atomic_file.h"
#include "formats/system_calls.h"
#include "tests/formats/scoped_system_calls.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats::AtomicFile;
using formats_test::ScopedSystemCalls;

std::size_t filesIn(const Scratch& folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path())) ++count;
  return count;
}

// Not every file system has files without a name.
class WithoutNamelessFiles : public testing::Test {
 protected:
  WithoutNamelessFiles() {
    formats::systemCalls().open = [](const char* path, int flags, mode_t mode) {
      if ((flags & O_TMPFILE) != O_TMPFILE) return ::open(path, flags, mode);
      errno = EOPNOTSUPP;
      return -1;
    };
  }
  Scratch folder_;

 private:
  ScopedSystemCalls calls_;
};

TEST_F(WithoutNamelessFiles, AFileAppearsWithCommitOnly) {
  folder_.write("a.txt", "old");
  AtomicFile file(folder_.file("a.txt"));
  file.write("new");
  EXPECT_EQ(contentOf(folder_.file("a.txt")), "old");
  EXPECT_EQ(filesIn(folder_), 2U) << "a temporary one beside it";
  file.commit();
  EXPECT_EQ(contentOf(folder_.file("a.txt")), "new");
  EXPECT_EQ(filesIn(folder_), 1U);
}

TEST_F(WithoutNamelessFiles, NothingIsLeftWithoutCommit) {
  { AtomicFile(folder_.file("a.txt")).write("half"); }
  EXPECT_EQ(filesIn(folder_), 0U);
}

TEST_F(WithoutNamelessFiles, TwoFilesOfOneNameDoNotMeet) {
  AtomicFile first(folder_.file("a.txt")), second(folder_.file("a.txt"));
  first.write("first");
  second.write("second");
  second.commit();
  first.commit();
  EXPECT_EQ(contentOf(folder_.file("a.txt")), "first");
  EXPECT_EQ(filesIn(folder_), 1U);
}

// 255 bytes are what a name may have; the temporary one has no share in it.
TEST_F(WithoutNamelessFiles, TheLongestNameThereIsCanBeWritten) {
  const std::string name(255, 'n');
  formats::writeTextFile(folder_.file(name), "whole");
  EXPECT_EQ(contentOf(folder_.file(name)), "whole");
  EXPECT_EQ(filesIn(folder_), 1U);
}

TEST_F(WithoutNamelessFiles, AMissingFolderIsNamed) {
  EXPECT_EQ(reasonOf([&] { formats::writeTextFile(folder_.file("no/a.txt"), "x"); }),
            "cannot create the file (No such file or directory). Create the folder first.");
}

// What another process does with the first name that is tried.
std::string& firstName() {
  static std::string name;
  return name;
}
int lockOfAnother = -1;

TEST_F(WithoutNamelessFiles, ANameThatAnotherHasIsNotTaken) {
  firstName().clear();
  formats::systemCalls().open = [](const char* path, int flags, mode_t mode) {
    if ((flags & O_TMPFILE) == O_TMPFILE) return errno = EOPNOTSUPP, -1;
    if (firstName().empty()) {
      firstName() = path;
      const int fd = ::open(path, O_WRONLY | O_CREAT, 0600);
      if (::write(fd, "theirs, longer", 14) != 14) ADD_FAILURE();
      ::close(fd);
    }
    return ::open(path, flags, mode);
  };
  formats::writeTextFile(folder_.file("a.txt"), "mine");
  EXPECT_EQ(contentOf(folder_.file("a.txt")), "mine");
  EXPECT_EQ(contentOf(firstName()), "theirs, longer");
}

TEST_F(WithoutNamelessFiles, AFileThatAnotherLockedFirstIsLeftToIt) {
  firstName().clear();
  formats::systemCalls().open = [](const char* path, int flags, mode_t mode) {
    if ((flags & O_TMPFILE) == O_TMPFILE) return errno = EOPNOTSUPP, -1;
    const int fd = ::open(path, flags, mode);
    if (firstName().empty()) {
      firstName() = path;
      lockOfAnother = ::open(path, O_RDONLY);
      EXPECT_EQ(::flock(lockOfAnother, LOCK_EX | LOCK_NB), 0);
    }
    return fd;
  };
  AtomicFile file(folder_.file("a.txt"));
  file.write("mine");
  file.commit();
  EXPECT_EQ(contentOf(folder_.file("a.txt")), "mine");
  // What was written went into another file than the one that is locked.
  struct stat locked {};
  struct stat written {};
  ASSERT_EQ(::fstat(lockOfAnother, &locked), 0);
  ASSERT_EQ(::stat(folder_.file("a.txt").c_str(), &written), 0);
  EXPECT_NE(locked.st_ino, written.st_ino);
  ::close(lockOfAnother);
}

}  // namespace
