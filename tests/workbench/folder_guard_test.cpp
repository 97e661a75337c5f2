#include "workbench/folder_guard.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/scratch.h"
#include "tests/workbench/status_of.h"

namespace {

namespace fs = std::filesystem;

struct FolderGuardTest : testing::Test {
  Scratch scratch;
  workbench::FolderGuard guard;

  FolderGuardTest() {
    scratch.write("secret.txt", "secret");
    scratch.write("data/inner/a.txt", "a");
    scratch.write("data/.hidden/b.txt", "b");
    fs::create_symlink(scratch.folder() / "secret.txt", scratch.folder() / "data/out.txt");
    fs::create_symlink(scratch.folder() / "data/.hidden", scratch.folder() / "data/shown");
    fs::create_symlink("inner/a.txt", scratch.folder() / "data/alias.txt");
    guard.allow(scratch.folder() / "data");
  }
  [[nodiscard]] int of(const std::string& path) const {
    return statusOf([&] { static_cast<void>(guard.resolved("data", path)); });
  }
  [[nodiscard]] int ofWriting(const std::string& path) const {
    return statusOf([&] { static_cast<void>(guard.resolvedForWriting(scratch.folder() / path)); });
  }
};

TEST_F(FolderGuardTest, FindsWhatIsBelow) {
  EXPECT_EQ(of(""), 0);
  EXPECT_EQ(of("inner/"), 0);
  EXPECT_EQ(guard.resolved("data", "alias.txt"), fs::canonical(scratch.folder() / "data/inner/a.txt"));
}

TEST_F(FolderGuardTest, RefusesWhatIsElsewhere) {
  for (const char* path : {"..", "../secret.txt", "inner/../inner/a.txt", "/etc/passwd", "out.txt",
                           ".hidden/b.txt", "shown/b.txt", "."})
    EXPECT_EQ(of(path), 403) << path;
  EXPECT_EQ(of(scratch.file("secret.txt")), 403);
  EXPECT_EQ(of(std::string("inner\0/..", 9)), 403);
  EXPECT_EQ(of("none.txt"), 404);
  EXPECT_EQ(statusOf([this] { static_cast<void>(guard.resolved("other", "")); }), 404);
}

TEST_F(FolderGuardTest, DoesNotSayWhatIsElsewhere) {
  const auto of = [this](const fs::path& path) {
    return statusOf([&] { static_cast<void>(guard.resolvedPath(path)); });
  };
  EXPECT_EQ(of(scratch.folder() / "secret.txt"), 403);
  EXPECT_EQ(of(scratch.folder() / "none.txt"), 403);
  EXPECT_EQ(of(scratch.folder() / "data/none.txt"), 404);
  EXPECT_EQ(of("data/inner/a.txt"), 403);
}

TEST_F(FolderGuardTest, LetsFilesBeWrittenBelow) {
  EXPECT_EQ(ofWriting("data/inner/new.txt"), 0);
  EXPECT_EQ(ofWriting("new.txt"), 403);
  EXPECT_EQ(ofWriting("data/.new.txt"), 403);
  EXPECT_EQ(ofWriting("data/out.txt"), 403);
  EXPECT_EQ(ofWriting("data/none/new.txt"), 404);
}

TEST_F(FolderGuardTest, ListsWithoutWaysOut) {
  std::vector<std::string> names;
  for (const auto& entry : guard.list(scratch.folder() / "data")) names.push_back(entry.name);
  EXPECT_EQ(names, (std::vector<std::string>{"alias.txt", "inner"}));
}

TEST_F(FolderGuardTest, NamesFoldersApart) {
  scratch.write("more/data/x");
  guard.allow(scratch.folder() / "more/data");
  guard.allow(scratch.folder() / "data/../data/");
  ASSERT_EQ(guard.folders().size(), 2U);
  EXPECT_EQ(guard.folders()[1].name, "data-2");
  EXPECT_THROW(guard.allow(scratch.folder() / "secret.txt"), study::InputError);
}

TEST_F(FolderGuardTest, KnowsThePlaceOfAPath) {
  const auto place = guard.placeOf(fs::canonical(scratch.folder() / "data/inner"));
  EXPECT_EQ(place.folder, "data");
  EXPECT_EQ(place.path, "inner");
  EXPECT_EQ(guard.placeOf(scratch.folder() / "database").folder, "");
}

}  // namespace
