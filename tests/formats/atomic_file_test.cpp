#include "formats/atomic_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <thread>
#include <vector>

#include "formats/system_calls.h"
#include "tests/fakes/vtc_file.h"
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

TEST(AtomicFile, AppearsWithCommit) {
  const Scratch folder;
  AtomicFile file(folder.file("a.txt"));
  file.write("one ");
  file.write("two");
  EXPECT_FALSE(std::filesystem::exists(folder.file("a.txt")));
  file.commit();
  EXPECT_EQ(contentOf(folder.file("a.txt")), "one two");
  EXPECT_EQ(filesIn(folder), 1U);
}

// Names for the while are given out to threads that commit at the same time.
TEST(AtomicFile, ThreadsDoNotMeetInAName) {
  const Scratch folder;
  constexpr int kThreads = 4, kFiles = 100;
  const auto nameOf = [&](int thread, int file) {
    return folder.file(std::to_string(thread) + "-" + std::to_string(file));
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int file = 0; file < kFiles; ++file)
        formats::writeTextFile(nameOf(thread, file), nameOf(thread, file));
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int thread = 0; thread < kThreads; ++thread)
    for (int file = 0; file < kFiles; ++file)
      ASSERT_EQ(contentOf(nameOf(thread, file)), nameOf(thread, file));
  EXPECT_EQ(filesIn(folder), std::size_t{kThreads} * kFiles);
}

TEST(AtomicFile, LeavesNothingWithoutCommit) {
  const Scratch folder;
  { AtomicFile(folder.file("a.txt")).write("half"); }
  EXPECT_EQ(filesIn(folder), 0U);
}

TEST(AtomicFile, ReplacesAnOlderFileOnlyWithCommit) {
  const Scratch folder;
  folder.write("a.txt", "old");
  { AtomicFile(folder.file("a.txt")).write("half"); }
  EXPECT_EQ(contentOf(folder.file("a.txt")), "old");
  formats::writeTextFile(folder.file("a.txt"), "new");
  EXPECT_EQ(contentOf(folder.file("a.txt")), "new");
}

TEST(AtomicFile, KeepsTheOrderOfSmallAndLargePieces) {
  const Scratch folder;
  std::string expected;
  AtomicFile file(folder.file("a.bin"), formats::Durability::kCached);
  for (std::size_t i = 0; i < 40; ++i) {
    const std::string piece(i % 3 == 0 ? 70000 : 1000 * i, static_cast<char>('a' + i % 26));
    file.write(piece);
    expected += piece;
  }
  file.commit();
  EXPECT_EQ(contentOf(folder.file("a.bin")), expected);
}

TEST(AtomicFile, IsReadableAsTheUsersUmaskSays) {
  const Scratch folder;
  const mode_t umaskBefore = ::umask(027);
  formats::writeTextFile(folder.file("a.txt"), "x");
  ::umask(umaskBefore);
  struct stat status {};
  ASSERT_EQ(::stat(folder.file("a.txt").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST(AtomicFile, ReportsAFullDisk) {
  const Scratch folder;
  const ScopedSystemCalls calls;
  formats::systemCalls().write = [](int, const void*, std::size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_EQ(reasonOf([&] { formats::writeTextFile(folder.file("a.txt"), "text"); }),
            "cannot write the file (No space left on device). Free some space or choose another folder.");
  EXPECT_EQ(filesIn(folder), 0U);
}

TEST(AtomicFile, ReportsADiskThatFillsOnTheWayToTheMedium) {
  const Scratch folder;
  const ScopedSystemCalls calls;
  formats::systemCalls().fsync = [](int) {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_NE(reasonOf([&] { formats::writeTextFile(folder.file("a.txt"), "text"); }), "");
  EXPECT_EQ(filesIn(folder), 0U);
}

// Some file systems report a full disk only here.
TEST(AtomicFile, ReportsADiskThatFillsWhenTheFileIsClosed) {
  const Scratch folder;
  folder.write("a.txt", "old");
  const ScopedSystemCalls calls;
  formats::systemCalls().close = [](int fd) {
    ::close(fd);
    errno = ENOSPC;
    return -1;
  };
  EXPECT_EQ(reasonOf([&] { formats::writeTextFile(folder.file("a.txt"), "new"); }),
            "cannot write the file (No space left on device). Free some space or choose another folder.");
  EXPECT_EQ(contentOf(folder.file("a.txt")), "old");
  EXPECT_EQ(filesIn(folder), 1U);
}

TEST(AtomicFile, RemovesItsTemporaryNameWhenTheLastStepFails) {
  const Scratch folder;
  const ScopedSystemCalls calls;
  formats::systemCalls().rename = [](const char*, const char*) {
    errno = EACCES;
    return -1;
  };
  EXPECT_EQ(reasonOf([&] { formats::writeTextFile(folder.file("a.txt"), "text"); }),
            "cannot rename the file (Permission denied). Choose a folder that you may write to.");
  EXPECT_EQ(filesIn(folder), 0U);
}

TEST(AtomicFile, GoesOnAfterShortAndInterruptedWrites) {
  const Scratch folder;
  const ScopedSystemCalls calls;
  formats::systemCalls().write = [](int fd, const void* data, std::size_t bytes) -> ssize_t {
    static int count = 0;
    if (++count % 2 == 1) {
      errno = EINTR;
      return -1;
    }
    return ::write(fd, data, bytes < 3 ? bytes : 3);
  };
  formats::writeTextFile(folder.file("a.txt"), "some longer text");
  EXPECT_EQ(contentOf(folder.file("a.txt")), "some longer text");
}

TEST(AtomicFile, SaysThatTheFolderIsMissing) {
  const Scratch folder;
  EXPECT_EQ(reasonOf([&] { formats::writeTextFile(folder.file("no/a.txt"), "x"); }),
            "cannot create the file (No such file or directory). Create the folder first.");
}

TEST(AtomicFile, RefusesTheNameOfAFolder) {
  const Scratch folder;
  EXPECT_EQ(reasonOf([&] { formats::writeTextFile(folder.path(), "x"); }),
            "cannot write the file, there is a folder of that name. Choose another name.");
}

TEST(ReadTextFile, GoesOnAfterShortAndInterruptedReads) {
  const Scratch folder;
  folder.write("a.txt", "some longer text");
  const ScopedSystemCalls calls;
  formats::systemCalls().read = [](int fd, void* data, std::size_t bytes) -> ssize_t {
    static int count = 0;
    if (++count % 2 == 1) {
      errno = EINTR;
      return -1;
    }
    return ::read(fd, data, bytes < 3 ? bytes : 3);
  };
  EXPECT_EQ(formats::readTextFile(folder.file("a.txt")), "some longer text");
}

TEST(ReadTextFile, RefusesMoreThanItsLimit) {
  const Scratch folder;
  folder.write("a.txt", "12345");
  EXPECT_EQ(formats::readTextFile(folder.file("a.txt"), 5), "12345");
  EXPECT_EQ(reasonOf([&] { (void)formats::readTextFile(folder.file("a.txt"), 4); }),
            "the file is too large for a text of its kind. Check that it is the right file.");
}

TEST(FileError, ReadsAsPathReasonRemedy) {
  const formats::FileError error("a/b.nii", "it is odd", "Mend it");
  EXPECT_STREQ(error.what(), "a/b.nii: it is odd. Mend it.");
  EXPECT_EQ(error.fault(), formats::Fault::kInput);
}

TEST(AtomicFile, SkipsShortAndLongStretches) {
  const Scratch folder;
  std::string expected = "start";
  AtomicFile file(folder.file("a.bin"));
  file.write("start");
  for (const std::size_t gap :
       {std::size_t{1}, std::size_t{65535}, std::size_t{65536}, std::size_t{1000001}}) {
    file.skip(gap);
    file.write("x");
    expected += std::string(gap, '\0') + 'x';
  }
  file.commit();
  EXPECT_EQ(contentOf(folder.file("a.bin")), expected);
}

TEST(AtomicFile, MayEndInAHole) {
  const Scratch folder;
  AtomicFile file(folder.file("a.bin"));
  file.write("start");
  file.skip(200000);
  file.commit();
  EXPECT_EQ(contentOf(folder.file("a.bin")), "start" + std::string(200000, '\0'));
}

// 100 rows are more than one call takes.
TEST(AtomicFile, WritesRowsBesideAndReadsThemBack) {
  const Scratch folder;
  std::string rows, gathered(500, '.');
  for (int i = 0; i < 100; ++i) rows += "row" + std::to_string(100 + i).substr(1) + "....";
  std::string expected = "ab";
  for (std::size_t i = 0; i < 100; ++i) expected += rows.substr(i * 9, 5);
  for (const bool isShort : {false, true}) {
    const ScopedSystemCalls calls;
    if (isShort) {
      formats::systemCalls().pwritev = [](int fd, const iovec* pieces, int, off_t offset) -> ssize_t {
        static int count = 0;
        if (++count % 2 == 1) {
          errno = EINTR;
          return -1;
        }
        return ::pwrite(fd, pieces[0].iov_base, std::min<std::size_t>(pieces[0].iov_len, 3), offset);
      };
      formats::systemCalls().pread = [](int fd, void* data, std::size_t bytes, off_t offset) -> ssize_t {
        static int count = 0;
        if (++count % 2 == 1) {
          errno = EINTR;
          return -1;
        }
        return ::pread(fd, data, std::min<std::size_t>(bytes, 7), offset);
      };
    }
    AtomicFile file(folder.file("a.bin"));
    file.write("ab");
    file.writeRowsAt(rows.data(), 100, 5, 9, 2);
    file.readAt(gathered.data(), 500, 2);
    EXPECT_EQ("ab" + gathered, expected) << isShort;
    file.commit();
    EXPECT_EQ(contentOf(folder.file("a.bin")), expected) << isShort;
  }
}

TEST(AtomicFile, TellsWhenBytesAreMissing) {
  const Scratch folder;
  AtomicFile file(folder.file("a.bin"));
  char byte = 0;
  EXPECT_EQ(reasonOf([&] { file.readAt(&byte, 1, 0); }),
            "cannot read back the file (Input/output error). Check the disk and the path.");
}

TEST(AtomicFile, ReservesSpaceWithoutGrowing) {
  const Scratch folder;
  AtomicFile file(folder.file("a.bin"));
  file.reserve(1000000);
  file.write("text");
  file.commit();
  EXPECT_EQ(contentOf(folder.file("a.bin")), "text");
}

TEST(AtomicFile, ReportsADiskWithoutTheSpaceToReserveAndPassesOverOneThatCannotReserve) {
  const Scratch folder;
  const ScopedSystemCalls calls;
  formats::systemCalls().fallocate = [](int, int, off_t, off_t) {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_EQ(reasonOf([&] { AtomicFile(folder.file("a.bin")).reserve(10); }),
            "cannot write the file (No space left on device). Free some space or choose another folder.");
  formats::systemCalls().fallocate = [](int, int, off_t, off_t) {
    errno = EDQUOT;
    return -1;
  };
  EXPECT_EQ(reasonOf([&] { AtomicFile(folder.file("a.bin")).reserve(10); }),
            "cannot write the file (Disk quota exceeded). Free some space or choose another folder.");
  formats::systemCalls().fallocate = [](int, int, off_t, off_t) {
    errno = EFBIG;
    return -1;
  };
  EXPECT_EQ(reasonOf([&] { AtomicFile(folder.file("a.bin")).reserve(10); }),
            "cannot write the file (File too large). Check the disk and the path.");
  formats::systemCalls().fallocate = [](int, int, off_t, off_t) {
    errno = EOPNOTSUPP;
    return -1;
  };
  AtomicFile file(folder.file("a.bin"));
  file.reserve(10);
  file.write("text");
  file.commit();
  EXPECT_EQ(contentOf(folder.file("a.bin")), "text");
}

}  // namespace
