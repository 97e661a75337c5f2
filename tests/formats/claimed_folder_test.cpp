#include "formats/claimed_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "formats/atomic_file.h"
#include "formats/lock_owner.h"
#include "formats/system_calls.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/scoped_system_calls.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

namespace fs = std::filesystem;
using fakes::writeBytes;
using formats::ClaimedFolder;
using formats::removeAbandoned;

std::set<std::string> namesIn(const Scratch& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder.path()))
    names.insert(entry.path().filename().string());
  return names;
}

// A process that does something in the folder and then waits until it is killed.
class Holder {
 public:
  template <typename Action>
  explicit Holder(Action action) {
    int ends[2];
    if (pipe(ends) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      const auto kept = action();
      if (write(ends[1], "x", 1) == 1) pause();
      _exit(0);
    }
    char ready = 0;
    (void)!read(ends[0], &ready, 1);
    close(ends[0]), close(ends[1]);
  }
  ~Holder() { die(); }
  void die() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }

 private:
  pid_t pid_ = -1;
};

TEST(ClaimedFolder, IsEmptyAndLeavesNothing) {
  const Scratch folder;
  fs::create_directories(folder.file(".tavmap-a/old"));
  {
    const ClaimedFolder claimed(folder.path(), "a");
    EXPECT_EQ(claimed.path(), folder.file(".tavmap-a"));
    EXPECT_TRUE(fs::is_empty(claimed.path()));
    writeBytes((claimed.path() / "x").string(), "x");
  }
  EXPECT_EQ(namesIn(folder), std::set<std::string>());
}

TEST(ClaimedFolder, BelongsToOneAtATime) {
  const Scratch folder;
  const ClaimedFolder mine(folder.path(), "a");
  const std::string reason = reasonOf([&] { ClaimedFolder(folder.path(), "a"); });
  EXPECT_EQ(reason.find("another process is at work here under the same names: process " +
                        std::to_string(getpid()) + " on "),
            0U)
      << reason;
  EXPECT_NE(reason.find(" UTC. Wait until it is done, or choose another output folder."), std::string::npos)
      << reason;
  EXPECT_TRUE(fs::exists(mine.path()));
  const ClaimedFolder one = ClaimedFolder::anew(folder.path(), "b");
  const ClaimedFolder two = ClaimedFolder::anew(folder.path(), "b");
  EXPECT_NE(one.path(), two.path());
}

TEST(LockOwner, IsReadAsOneLineWithoutControlCharacters) {
  const Scratch folder;
  const formats::Descriptor file(open(folder.file("lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  EXPECT_EQ(formats::readLockOwner(file.get()), "");
  formats::writeLockOwner(file.get());
  EXPECT_EQ(formats::readLockOwner(file.get()), contentOf(folder.file("lock")));
  writeBytes(folder.file("lock"), "\033[1mprocess\n7");
  EXPECT_EQ(formats::readLockOwner(file.get()), "[1mprocess7");
}

TEST(ClaimedFolder, OfADeadProcessIsSweptAndOfALivingOneStays) {
  const Scratch folder;
  Holder holder([&] {
    ClaimedFolder claimed(folder.path(), "a");
    writeBytes((claimed.path() / "x").string(), "x");
    return claimed;
  });
  const std::set<std::string> held = {".tavmap-a", ".tavmap-a.lock"};
  ASSERT_EQ(namesIn(folder), held);
  removeAbandoned(folder.path());
  EXPECT_EQ(namesIn(folder), held);
  EXPECT_TRUE(fs::exists(folder.file(".tavmap-a/x")));
  holder.die();
  ASSERT_EQ(namesIn(folder), held);
  removeAbandoned(folder.path());
  EXPECT_EQ(namesIn(folder), std::set<std::string>());
}

TEST(ClaimedFolder, SweepingTakesFolderAndLockAloneToo) {
  const Scratch folder;
  fs::create_directories(folder.file(".tavmap-a/below"));
  writeBytes(folder.file(".tavmap-b.lock"), "");
  writeBytes(folder.file("kept.part"), "");
  writeBytes(folder.file(".hidden"), "");
  removeAbandoned(folder.path());
  EXPECT_EQ(namesIn(folder), (std::set<std::string>{"kept.part", ".hidden"}));
}

TEST(ClaimedFolder, SweepingAFolderThatIsNotThereDoesNothing) {
  removeAbandoned("/nowhere/at/all");
}

TEST(RemoveAbandoned, TakesUnfinishedFilesOfTheDeadOnly) {
  const Scratch folder;
  writeBytes(folder.file(".a.txt.12-3.part"), "half");
  for (const char* other : {"a.txt.12-3.part", ".a.txt.12-3.parts", ".12-3.part", ".a.txt.12-.part"}) {
    writeBytes(folder.file(other), "");
  }
  writeBytes(folder.file(".b.12-4.part"), "half");
  const formats::Descriptor writer(open(folder.file(".b.12-4.part").c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(formats::tryLock(writer.get()), formats::FileLock::kMine);
  removeAbandoned(folder.path());
  EXPECT_EQ(namesIn(folder), (std::set<std::string>{".b.12-4.part", "a.txt.12-3.part", ".a.txt.12-3.parts",
                                                    ".12-3.part", ".a.txt.12-.part"}));
}

// The name between whole and final is swept by nobody else.
TEST(RemoveAbandoned, LeavesAFileThatIsBeingRenamed) {
  static std::string folderName;
  const Scratch folder;
  folderName = folder.path();
  const formats_test::ScopedSystemCalls calls;
  formats::systemCalls().rename = [](const char* from, const char* to) {
    removeAbandoned(folderName);
    return std::rename(from, to);
  };
  formats::writeTextFile(folder.file("a.txt"), "whole");
  EXPECT_EQ(contentOf(folder.file("a.txt")), "whole");
}

TEST(AtomicFile, ATakenTemporaryNameIsPassedOver) {
  const Scratch folder;
  // Names count up within the process; these are the next ones, as a process of the same number in
  // another container would have them.
  formats::writeTextFile(folder.file("a"), "first");
  for (int number = 1; number < 2000; ++number) {
    writeBytes(folder.file(".tavmap." + std::to_string(getpid()) + "-" + std::to_string(number) + ".part"),
               "");
  }
  formats::writeTextFile(folder.file("a"), "second");
  EXPECT_EQ(contentOf(folder.file("a")), "second");
}

}  // namespace
